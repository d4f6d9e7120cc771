#ifndef COMMANDS_H
#define COMMANDS_H

#include "options.h"
#include "output_stream.h"

namespace command {

/// Does what the user asks for and returns the exit status: 0 when every path is claimed or none
/// was asked about, 32 when none is, 64 when some are; of doctor see runDoctor.
///
/// Throws UsageError before anything is written when the trace file cannot be opened, and
/// std::system_error when input or output fails.
int runCommand(const Options& options, OutputStream& output);

} // namespace command

#endif
