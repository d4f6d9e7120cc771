#ifndef PARTITIONS_H
#define PARTITIONS_H

#include "cli/options.h"
#include "kernel/machine.h"

namespace command {

Subcommand appendSubcommand();

Subcommand stripSubcommand();

// Both return the exit status, and throw what reading standard input and writing throw.

int appendNumber(const Options& options, OutputStream& output, const Machine& machine);

int stripNumbers(const Options& options, OutputStream& output, const Machine& machine);

} // namespace command

#endif
