#ifndef DOCTOR_DOCTOR_H
#define DOCTOR_DOCTOR_H

#include "cli/subcommand.h"

namespace command {

/// `dmpclaim doctor`: tells what is wrong on this machine. Its run ends the process when it is
/// interrupted, see Interrupt.
Subcommand doctorSubcommand();

} // namespace command

#endif
