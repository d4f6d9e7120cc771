#ifndef TESTS_COMMAND_DMPCLAIM_H
#define TESTS_COMMAND_DMPCLAIM_H

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/process.h"

/// The command with its arguments, ready to start.
std::vector<std::string> dmpclaim(std::vector<std::string> arguments);

/// Runs the command to its end, with `input` on its standard input.
Result run(const std::vector<std::string>& arguments, std::string_view input = {},
           const Setting& setting = {});

/// Runs the command with --json and parses what it prints.
nlohmann::ordered_json runJson(std::vector<std::string> arguments, std::string_view input = {});

#endif
