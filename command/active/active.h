#ifndef ACTIVE_ACTIVE_H
#define ACTIVE_ACTIVE_H

#include "cli/subcommand.h"

namespace command {

/// `dmpclaim active`: looks up the paths that carry the I/O now. Its run ends the process when it
/// is interrupted, see Interrupt.
Subcommand activeSubcommand();

} // namespace command

#endif
