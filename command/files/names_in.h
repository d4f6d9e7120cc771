#ifndef FILES_NAMES_IN_H
#define FILES_NAMES_IN_H

#include <string>
#include <system_error>
#include <vector>

namespace command {

/// The names in a folder, without "." and "..", in no order; none when it cannot be read to its
/// end, and then `error` says why.
std::vector<std::string> namesIn(const std::string& folder, std::error_code& error);

/// The same where the reason does not matter.
std::vector<std::string> namesIn(const std::string& folder);

} // namespace command

#endif
