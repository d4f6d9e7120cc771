#ifndef KERNEL_DEVICE_NUMBER_H
#define KERNEL_DEVICE_NUMBER_H

#include <optional>
#include <string>
#include <string_view>

namespace command {

/// The number by which the kernel knows a device.
struct DeviceNumber {
    unsigned int major = 0;
    unsigned int minor = 0;

    /// As sysfs writes it: "8:16".
    std::string text() const { return std::to_string(major) + ':' + std::to_string(minor); }
};

/// Nothing when the text is no number of a device.
///
///     number = digit+ ":" digit+                  8:16
std::optional<DeviceNumber> parseDeviceNumber(std::string_view text);

} // namespace command

#endif
