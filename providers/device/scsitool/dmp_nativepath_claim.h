#ifndef DMP_NATIVEPATH_CLAIM_H
#define DMP_NATIVEPATH_CLAIM_H

#include <cstdint>
#include <string>
#include <vector>

#include "dmp_device_claim_base.h"

/// Claim module of the plain SCSI disk driver: names with "/dev/sd" and something behind it.
///
///     partition = disk digit+          /dev/sdc12
///
/// Its claim is the weakest, so that a multipath driver which claims the same path wins. The
/// marker counts anywhere in the path.
class CZE_EXPORT CNativePathClaim : public CDmpDeviceClaimBase {
public:
    /// Returns "/dev/sd".
    std::vector<std::string> getDeviceClaimStrings() override;

    /// Returns CLAIM_DEFAULT for a path that holds, and is longer than, one of
    /// `getDeviceClaimStrings` (asked through its virtual slot, so that a derived class claims by
    /// its own list), else CLAIM_NONE.
    std::uint32_t claim(std::string device) override;

    /// Returns whether the path has three or more characters and ends in a digit; the marker is
    /// not looked for.
    bool isPartition(std::string device) override;

    /// Returns `device` up to its first NUL and the number as a signed decimal (4294967295 gives
    /// "-1"), cut to 1023 characters.
    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override;

    /// Returns a path with "/dev/sd" without the digits that end it, and stores their value in
    /// `partnum`: the low 32 bits of a long, which saturates. A path without the marker or without
    /// digits comes back unchanged and `partnum` is left alone.
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override;
};

#endif
