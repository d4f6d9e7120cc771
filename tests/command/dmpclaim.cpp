#include "tests/command/dmpclaim.h"

std::vector<std::string> dmpclaim(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), DMPCLAIM_COMMAND);
    return arguments;
}

Result run(const std::vector<std::string>& arguments, std::string_view input,
           const Setting& setting)
{
    return Process(dmpclaim(arguments), setting).finish(input);
}

nlohmann::ordered_json runJson(std::vector<std::string> arguments, std::string_view input)
{
    arguments.emplace_back("--json");
    return nlohmann::ordered_json::parse(run(arguments, input).output);
}
