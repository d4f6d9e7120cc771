#include "dmp_powerpath_claim.h"

#include "dmp_trailing_digits.h"
#include "vstring/Y_strings.h"

namespace {

constexpr char deviceMarker[] = "/dev/emcpower";
constexpr char nameMarker[] = "emcpower";

} // namespace

CDmpPowerPathClaim::~CDmpPowerPathClaim() = default;

std::vector<std::string> CDmpPowerPathClaim::getDeviceClaimStrings()
{
    CZE_TRACE_FUNCTION();
    std::vector<std::string> strings;
    strings.emplace_back(deviceMarker);
    return strings;
}

std::uint32_t CDmpPowerPathClaim::claim(std::string device)
{
    CZE_TRACE_FUNCTION();
    for (const std::string& prefix : getDeviceClaimStrings()) {
        if (device.find(prefix) != std::string::npos) {
            CZE_TRACE(3, "INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY");
            return CLAIM_SECONDARY;
        }
    }
    return CLAIM_NONE;
}

bool CDmpPowerPathClaim::isPartition(std::string device)
{
    CZE_TRACE_FUNCTION();
    return device.find(deviceMarker) != std::string::npos && isDigit(device.back());
}

std::string CDmpPowerPathClaim::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    CZE_TRACE_FUNCTION();
    char suffix[32];
    suffix[0] = '\0';
    Y_snprintf(suffix, sizeof suffix, "%d", static_cast<int>(partnum));
    const std::size_t diskLength = device.size();
    device += suffix;
    CZE_TRACE(3,
              "INFO: CDmpPowerPathClaim::appendPartitionSuffix device [%s] partition[%s] "
              "partnum[%d]",
              device.substr(0, diskLength).c_str(), device.c_str(), static_cast<int>(partnum));
    return device;
}

std::string CDmpPowerPathClaim::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    CZE_TRACE_FUNCTION();
    std::size_t diskLength = device.size();
    if (device.find(nameMarker) != std::string::npos) {
        diskLength = trailingDigits(device);
        partnum = numberAt(device, diskLength);
    }
    CZE_TRACE(3,
              "INFO: CDmpPowerPathClaim::removePartitionSuffix device [%s] partition[%s] "
              "partnum[%d]",
              device.substr(0, diskLength).c_str(), device.c_str(), static_cast<int>(partnum));
    device.resize(diskLength);
    return device;
}
