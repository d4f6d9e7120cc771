#ifndef TESTS_COMMAND_CLI_PARSED_ARGUMENTS_H
#define TESTS_COMMAND_CLI_PARSED_ARGUMENTS_H

#include <string>
#include <variant>
#include <vector>

#include "cli/options.h"
#include "cli/usage_error.h"
#include "commands.h"

using Arguments = std::vector<std::string>;

inline command::Options options(const Arguments& arguments)
{
    return std::get<command::Options>(command::parseOptions(arguments, command::subcommands()));
}

inline std::string information(const Arguments& arguments)
{
    return std::get<command::Information>(command::parseOptions(arguments, command::subcommands()));
}

/// What is wrong with the arguments, after the subcommand whose help tells more.
inline std::string complaint(const Arguments& arguments)
{
    try {
        command::parseOptions(arguments, command::subcommands());
        return "none";
    } catch (const command::UsageError& error) {
        return error.subcommand() + ": " + error.what();
    }
}

#endif
