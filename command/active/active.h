#ifndef ACTIVE_ACTIVE_H
#define ACTIVE_ACTIVE_H

#include "cli/subcommand.h"

namespace command {

/// `dmpclaim active`: looks up the paths that carry the I/O now. A signal that interrupts its run
/// exits the process, see Interrupt.
Subcommand activeSubcommand();

} // namespace command

#endif
