#ifndef CLI_PARSING_H
#define CLI_PARSING_H

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/subcommand.h"

namespace command {

/// Parses the arguments, without the command's name. Throws UsageError in the user's terms, and
/// CLI::Success when help or the version is wanted.
void parse(CLI::App& app, const std::vector<std::string>& arguments,
           const std::vector<Subcommand>& subcommands);

// What parse has found. `option` may also be the name of an argument, such as "PATH".

bool isGiven(const CLI::App& app, const char* option);
std::vector<std::string> valuesOf(const CLI::App& app, const char* option);
std::optional<std::string> lastValue(const CLI::App& app, const char* option);

/// The names of all subcommands: "list, show".
std::string subcommandNames(const CLI::App& app);

} // namespace command

#endif
