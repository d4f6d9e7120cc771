#ifndef SIMULATOR_CALL_LOG_H
#define SIMULATOR_CALL_LOG_H

#include <string>

#include "command.h"

namespace simulator {

/// Appends the call to the log file `path`, as one line in one write:
///
///     2026-11-21T10:53:24.123Z [4711] kodmpadm "getdmpnode" "nodename=sdc"
///
/// that is the time (UTC), the process id, the tool's name, and each argument in quotes. In an
/// argument a quote and a backslash have a backslash before them. Control characters and bytes that
/// are not UTF-8 become \xNN. Throws an Error when the line cannot be written.
void logCall(const std::string& path, const Command& command);

} // namespace simulator

#endif
