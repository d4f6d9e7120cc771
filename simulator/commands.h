#ifndef SIMULATOR_COMMANDS_H
#define SIMULATOR_COMMANDS_H

#include "command.h"
#include "state.h"

namespace simulator {

/// Carries out one call:
///
///     kodmpadm getdmpnode nodename=DISK
///     kodmpadm getsubpaths dmpnodename=NODE
///     kodisk rm NODE
///     kodisk scandisks [device=DISK[,DISK...]]
///
/// for example `kodisk scandisks device=sdb,sdc`. Empty names among the disks are ignored. A
/// call of any other form is answered with status 2 and a message.
Answer perform(State& state, const Command& command);

} // namespace simulator

#endif
