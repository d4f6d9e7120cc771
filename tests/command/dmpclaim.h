#ifndef TESTS_COMMAND_DMPCLAIM_H
#define TESTS_COMMAND_DMPCLAIM_H

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/process.h"

/// The command with its arguments, ready to start.
inline std::vector<std::string> dmpclaim(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), DMPCLAIM_COMMAND);
    return arguments;
}

/// Runs the command to its end, with `input` on its standard input.
inline Result run(const std::vector<std::string>& arguments, std::string_view input = {},
                  const Setting& setting = {})
{
    return Process(dmpclaim(arguments), setting).finish(input);
}

/// Runs the command with --json and parses what it prints.
inline nlohmann::ordered_json runJson(std::vector<std::string> arguments,
                                      std::string_view input = {})
{
    arguments.emplace_back("--json");
    return nlohmann::ordered_json::parse(run(arguments, input).output);
}

#endif
