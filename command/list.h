#ifndef LIST_H
#define LIST_H

#include "cli/options.h"
#include "kernel/machine.h"

namespace command {

Subcommand listSubcommand();

/// Writes a row for each wanted device of the machine. Returns the exit status: 0 when the list
/// could be made; 64 when some given paths are no devices, and 32 when all are none. Throws
/// std::system_error when the machine's devices cannot be read, and UsageError.
int listDevices(const Options& options, OutputStream& output, const Machine& machine);

} // namespace command

#endif
