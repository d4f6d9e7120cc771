#ifndef SHOW_H
#define SHOW_H

#include "cli/options.h"
#include "kernel/machine.h"

namespace command {

Subcommand showSubcommand();

Subcommand explainSubcommand();

// Both return the exit status, and throw what reading standard input and writing throw.

int showPaths(const Options& options, OutputStream& output, const Machine& machine);

int explainPaths(const Options& options, OutputStream& output, const Machine& machine);

} // namespace command

#endif
