#include "cli/subcommand.h"

#include <string_view>

namespace command {

namespace {

/// The name from `begin` on, without what follows it in the declaration.
std::string nameFrom(std::string_view names, std::size_t begin)
{
    const std::string_view rest = names.substr(begin);
    return std::string(rest.substr(0, rest.find_first_of(",{")));
}

} // namespace

std::string OptionDeclaration::longName() const
{
    const std::string_view all = names;
    return nameFrom(all, all.find("--"));
}

std::string OptionDeclaration::firstName() const
{
    return nameFrom(names, 0);
}

} // namespace command
