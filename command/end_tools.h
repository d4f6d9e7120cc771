#ifndef END_TOOLS_H
#define END_TOOLS_H

#include "stop_request.h"

namespace command {

/// Ends the tools that this process runs, each with its whole process group: SIGTERM, and SIGKILL
/// for what is left after half a second. REQUIRES: `stop` is requested, so that no tool follows.
///
/// Returns when none is left; at the latest after two seconds, when even SIGKILL ends one not,
/// because it waits for a device.
void endTools(const StopRequest& stop);

} // namespace command

#endif
