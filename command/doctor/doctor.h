#ifndef DOCTOR_DOCTOR_H
#define DOCTOR_DOCTOR_H

#include "cli/subcommand.h"

namespace command {

/// `dmpclaim doctor`: tells what is wrong on this machine. A signal that interrupts its run exits
/// the process, see Interrupt.
Subcommand doctorSubcommand();

} // namespace command

#endif
