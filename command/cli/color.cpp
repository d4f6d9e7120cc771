#include "cli/color.h"

#include <cstdlib>
#include <string_view>

namespace command {

namespace {

std::string_view variable(const char* name)
{
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

bool showsColors(ColorChoice choice, bool isTerminal)
{
    if (choice != ColorChoice::automatic)
        return choice == ColorChoice::always;
    return isTerminal && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

} // namespace command
