#ifndef INTERRUPT_END_TOOLS_H
#define INTERRUPT_END_TOOLS_H

#include "interrupt/stop_request.h"

namespace command {

/// Ends the tools that this process runs, and what they have started in their sessions: SIGTERM,
/// then SIGKILL after half a second. REQUIRES: `stop` is requested, so that no tool starts any
/// more, and all tools were started by threads other than the main one.
///
/// Signals no other process: no child from before exec, no inherited child, no process that reuses
/// a tool's number, and nothing that an earlier tool left running. A process that leaves its tool's
/// session is not ended. Before kernel 6.9, a process that a tool starts while it ends may be left.
///
/// Returns true when none is left. Returns false after two seconds: SIGKILL does not end a process
/// that waits for a device, or the tools cannot be found. Finding them takes pidfds (kernel 5.3)
/// and a /proc of this process's namespace with lists of children (CONFIG_PROC_CHILDREN).
[[nodiscard]] bool endTools(const StopRequest& stop);

} // namespace command

#endif
