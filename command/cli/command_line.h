#ifndef CLI_COMMAND_LINE_H
#define CLI_COMMAND_LINE_H

#include <vector>

#include <CLI/CLI.hpp>

#include "cli/subcommand.h"

namespace command {

/// The subcommand that prints the help of the one named by its argument SUBCOMMAND.
inline constexpr char helpSubcommand[] = "help";

/// Declares the options and subcommands with their help, whose lines have `width` columns. Values
/// stay texts, which parseOptions and the subcommands check.
void declareCommandLine(CLI::App& app, const std::vector<Subcommand>& subcommands,
                        std::size_t width);

} // namespace command

#endif
