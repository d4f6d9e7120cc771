#ifndef DMP_LINUX_DEVICE_MAPPER_CLAIM_H
#define DMP_LINUX_DEVICE_MAPPER_CLAIM_H

#include <cstdint>
#include <string>
#include <vector>

#include "dmp_device_claim_base.h"

/// Claim module of the Linux device-mapper: names under "/dev/mapper/".
///
///     partition = disk "p" digit          /dev/mapper/mpathbp2
///
/// One digit only: partitions from 10 on are not recognised. A '-' anywhere in the path marks a
/// logical volume, which nobody claims. Markers count anywhere in the path.
class CZE_EXPORT CDmpDeviceMapperClaim : public CDmpDeviceClaimBase {
public:
    CDmpDeviceMapperClaim() = default;
    CDmpDeviceMapperClaim(const CDmpDeviceMapperClaim&) = default;
    CDmpDeviceMapperClaim& operator=(const CDmpDeviceMapperClaim&) = default;
    ~CDmpDeviceMapperClaim() override;

    /// Returns "/dev/mapper/".
    std::vector<std::string> getDeviceClaimStrings() override;

    /// Returns CLAIM_SECONDARY for a path with "/dev/mapper/" and without '-', else CLAIM_NONE.
    std::uint32_t claim(std::string device) override;

    /// Returns whether a path with "/dev/mapper" ends in 'p' and one digit. The shorter marker is
    /// meant: "/dev/mapperp1" is a partition.
    bool isPartition(std::string device) override;

    /// Returns `device`, 'p' and the number as a signed decimal: 4294967295 gives "p-1".
    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override;

    /// Returns a path with "/dev/mapper/" without the 'p' and digit that end it, and leaves
    /// `partnum` alone. Without such an ending the path comes back unchanged and `partnum` becomes
    /// 0; without the marker it comes back unchanged and `partnum` is left alone.
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override;
};

#endif
