#ifndef COMMAND_LINE_H
#define COMMAND_LINE_H

#include <CLI/CLI.hpp>

namespace command {

/// Declares the options and subcommands with their help. Values stay texts: what they mean is
/// checked elsewhere.
void declareCommandLine(CLI::App& app);

} // namespace command

#endif
