#ifndef CLI_COMMAND_LINE_H
#define CLI_COMMAND_LINE_H

#include <vector>

#include <CLI/CLI.hpp>

#include "cli/subcommand.h"

namespace command {

/// Declares the options and subcommands with their help. Values stay texts, which parseOptions and
/// the subcommands check.
void declareCommandLine(CLI::App& app, const std::vector<Subcommand>& subcommands);

} // namespace command

#endif
