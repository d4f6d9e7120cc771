#ifndef INTERRUPT_END_TOOLS_H
#define INTERRUPT_END_TOOLS_H

#include "interrupt/stop_request.h"

namespace command {

/// Ends the tools that this process runs, each with what it has started in its session: SIGTERM,
/// and SIGKILL for what is left after half a second. REQUIRES: `stop` is requested, so that no tool
/// follows, and tools were started by other threads than the main one.
///
/// Signals nothing else: no child that the process was executed with or has inherited, no process
/// that got a tool's number, and nothing that an earlier tool left behind. What leaves its tool's
/// session is not ended. Before kernel 6.9, neither is what a tool starts at the moment of its end.
///
/// Returns true when none is left; false after two seconds, when even SIGKILL ends one not, because
/// it waits for a device, or when nothing tells which tools run: that takes pidfds (kernel 5.3) and
/// a /proc of this process's namespace with lists of children (CONFIG_PROC_CHILDREN).
[[nodiscard]] bool endTools(const StopRequest& stop);

} // namespace command

#endif
