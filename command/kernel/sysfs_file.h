#ifndef KERNEL_SYSFS_FILE_H
#define KERNEL_SYSFS_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace command {

// Files of sysfs. A device may vanish at any time, and older kernels lack attributes: what cannot
// be read is nothing.

/// The attribute's text without the blanks and line end behind it.
std::optional<std::string> readAttribute(const std::string& file);

/// A decimal number, such as the text of an attribute; nothing when the text is anything else.
std::optional<std::uint64_t> decimal(std::string_view text);

/// An attribute that is a decimal number.
std::optional<std::uint64_t> readNumber(const std::string& file);

/// Where a symbolic link leads, as it is written.
std::optional<std::string> linkTarget(const std::string& file);

} // namespace command

#endif
