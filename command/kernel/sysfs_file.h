#ifndef KERNEL_SYSFS_FILE_H
#define KERNEL_SYSFS_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

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

/// The names in a folder, without "." and "..", in no order; none when it cannot be read to its
/// end, and then `error` says why.
std::vector<std::string> namesIn(const std::string& folder, std::error_code& error);

/// The same where the reason does not matter.
std::vector<std::string> namesIn(const std::string& folder);

} // namespace command

#endif
