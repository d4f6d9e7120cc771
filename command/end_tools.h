#ifndef END_TOOLS_H
#define END_TOOLS_H

#include <set>

#include <sys/types.h>

#include "stop_request.h"

namespace command {

/// The children of this process. Before it starts any, those that it was executed with.
std::set<pid_t> childProcesses();

/// Ends the tools that this process runs, each with its whole process group: SIGTERM, and SIGKILL
/// for what is left after half a second. Tools are the children that lead groups of their own, but
/// for `others`. REQUIRES: `stop` is requested, so that no tool follows.
///
/// Returns true when none is left; false after two seconds, when even SIGKILL ends one not, because
/// it waits for a device, or when nothing tells which tools run: /proc is missing, or shows another
/// process namespace.
[[nodiscard]] bool endTools(const StopRequest& stop, const std::set<pid_t>& others);

} // namespace command

#endif
