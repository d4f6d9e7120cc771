#include "dmp_linux_device_mapper_claim.h"

#include "dmp_trailing_digits.h"
#include "vstring/Y_strings.h"

namespace {

constexpr char mapperDirectory[] = "/dev/mapper/";
constexpr char mapperMarker[] = "/dev/mapper";

/// REQUIRES: `device` holds a marker, so that it has more than two characters.
bool endsInPartition(const std::string& device)
{
    return isDigit(device.back()) && device[device.size() - 2] == 'p';
}

} // namespace

CDmpDeviceMapperClaim::~CDmpDeviceMapperClaim() = default;

std::vector<std::string> CDmpDeviceMapperClaim::getDeviceClaimStrings()
{
    CZE_TRACE_FUNCTION();
    std::vector<std::string> strings;
    strings.emplace_back(mapperDirectory);
    return strings;
}

std::uint32_t CDmpDeviceMapperClaim::claim(std::string device)
{
    CZE_TRACE_FUNCTION();
    if (device.find(mapperDirectory) == std::string::npos)
        return CLAIM_NONE;
    if (device.find('-') != std::string::npos)
        return CLAIM_NONE;
    CZE_TRACE(3, "INFO: CDmpDeviceMapperClaim::claim - returning CLAIM_SECONDARY");
    return CLAIM_SECONDARY;
}

bool CDmpDeviceMapperClaim::isPartition(std::string device)
{
    CZE_TRACE_FUNCTION();
    return device.find(mapperMarker) != std::string::npos && endsInPartition(device);
}

std::string CDmpDeviceMapperClaim::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    CZE_TRACE_FUNCTION();
    char suffix[32];
    suffix[0] = '\0';
    Y_snprintf(suffix, sizeof suffix, "p%d", static_cast<int>(partnum));
    const std::size_t diskLength = device.size();
    device += suffix;
    CZE_TRACE(3,
              "INFO: CDmpDeviceMapperClaim::appendPartitionSuffix device [%s] partition[%s] "
              "partnum[%d]",
              device.substr(0, diskLength).c_str(), device.c_str(), static_cast<int>(partnum));
    return device;
}

std::string CDmpDeviceMapperClaim::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    CZE_TRACE_FUNCTION();
    std::size_t diskLength = device.size();
    if (device.find(mapperDirectory) != std::string::npos) {
        if (endsInPartition(device))
            diskLength -= 2;
        else
            partnum = 0;
    }
    CZE_TRACE(3,
              "INFO: CDmpDeviceMapperClaim::removePartitionSuffix device [%s] partition[%s] "
              "partnum[%d]",
              device.substr(0, diskLength).c_str(), device.c_str(), static_cast<int>(partnum));
    device.resize(diskLength);
    return device;
}
