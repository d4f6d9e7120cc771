#include "dmp_nativepath_claim.h"

#include "dmp_trailing_digits.h"
#include "vstring/Y_strings.h"

namespace {

constexpr char deviceMarker[] = "/dev/sd";

} // namespace

std::vector<std::string> CNativePathClaim::getDeviceClaimStrings()
{
    CZE_TRACE_FUNCTION();
    std::vector<std::string> strings;
    strings.emplace_back(deviceMarker);
    return strings;
}

std::uint32_t CNativePathClaim::claim(std::string device)
{
    CZE_TRACE_FUNCTION();
    for (const std::string& prefix : getDeviceClaimStrings()) {
        if (prefix.size() < device.size() && device.find(prefix) != std::string::npos)
            return CLAIM_DEFAULT;
    }
    return CLAIM_NONE;
}

bool CNativePathClaim::isPartition(std::string device)
{
    CZE_TRACE_FUNCTION();
    if (device.size() <= 2 || !isDigit(device.back()))
        return false;
    CZE_TRACE(3, "[%s] is a partition", device.c_str());
    return true;
}

std::string CNativePathClaim::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    CZE_TRACE_FUNCTION();
    char partition[1024];
    partition[0] = '\0';
    Y_snprintf(partition, sizeof partition, "%s%d", device.c_str(), static_cast<int>(partnum));
    return partition;
}

std::string CNativePathClaim::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    CZE_TRACE_FUNCTION();
    if (device.find(deviceMarker) != std::string::npos) {
        const std::size_t digits = trailingDigits(device);
        if (digits < device.size()) {
            partnum = numberAt(device, digits);
            device.resize(digits);
        }
    }
    CZE_TRACE(6, "devicename aftering removing partition suffix [%s].", device.c_str());
    return device;
}
