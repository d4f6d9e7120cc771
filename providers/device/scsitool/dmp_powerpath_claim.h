#ifndef DMP_POWERPATH_CLAIM_H
#define DMP_POWERPATH_CLAIM_H

#include <cstdint>
#include <string>
#include <vector>

#include "dmp_device_claim_base.h"

/// Claim module of EMC PowerPath: pseudo-devices "/dev/emcpower" and the disk's letters.
///
///     partition = disk digit+          /dev/emcpowerc12
///
/// Markers count anywhere in the path.
class CZE_EXPORT CDmpPowerPathClaim : public CDmpDeviceClaimBase {
public:
    CDmpPowerPathClaim() = default;
    CDmpPowerPathClaim(const CDmpPowerPathClaim&) = default;
    CDmpPowerPathClaim& operator=(const CDmpPowerPathClaim&) = default;
    ~CDmpPowerPathClaim() override;

    /// Returns "/dev/emcpower".
    std::vector<std::string> getDeviceClaimStrings() override;

    /// Returns CLAIM_SECONDARY for a path that holds one of `getDeviceClaimStrings` (asked through
    /// its virtual slot, so that a derived class claims by its own list), else CLAIM_NONE.
    std::uint32_t claim(std::string device) override;

    /// Returns whether a path with "/dev/emcpower" ends in a digit.
    bool isPartition(std::string device) override;

    /// Returns `device` and the number as a signed decimal: 4294967295 gives "-1".
    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override;

    /// Returns a path with "emcpower" (names without their directory are meant too) without the
    /// digits that end it, and stores their value in `partnum`, 0 when there are none: the low 32
    /// bits of a long, which saturates. Any other path comes back unchanged and `partnum` is left
    /// alone.
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override;
};

#endif
