#ifndef NAMES_TOOL_NAME_H
#define NAMES_TOOL_NAME_H

#include <string_view>

namespace command {

/// Why the volume manager's tools cannot be asked about a native path, as a clause in which "it" is
/// the path; null when they can be asked.
///
/// The library puts the name, up to its first NUL, into a command line. The runner splits that line
/// at spaces, and the tools split the list of disks to scan at commas:
///
///     /dev/sdc force=yes    gives the tools the argument "force=yes"
///     /dev/sdc,sdd          has two disks scanned
///     /dev/sdc NUL d        asks about sdc
const char* whyNotAsked(std::string_view path);

/// Why an active path that the tools named must not be used, in the same form; null when it may be
/// used.
///
/// The library puts "/dev/" before the name in the tools' answer: "../x" becomes /dev/../x.
const char* whyNotUsed(std::string_view activePath);

} // namespace command

#endif
