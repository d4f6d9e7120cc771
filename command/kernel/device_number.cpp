#include "kernel/device_number.h"

#include <cstdint>
#include <limits>

#include "kernel/sysfs_file.h"

namespace command {

namespace {

std::optional<unsigned int> part(std::string_view text)
{
    const std::optional<std::uint64_t> number = decimal(text);
    if (!number || *number > std::numeric_limits<unsigned int>::max())
        return std::nullopt;
    return static_cast<unsigned int>(*number);
}

} // namespace

std::optional<DeviceNumber> parseDeviceNumber(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const std::optional<unsigned int> major = part(text.substr(0, colon));
    const std::optional<unsigned int> minor = part(text.substr(colon + 1));
    if (!major || !minor)
        return std::nullopt;
    return DeviceNumber{*major, *minor};
}

} // namespace command
