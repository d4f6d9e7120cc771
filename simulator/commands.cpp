#include "commands.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "subcommands.h"
#include "volume_manager.h"

namespace simulator {

namespace {

using Arguments = std::vector<std::string>;

/// The arguments do not have the form that the tool expects.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Returns VALUE of the only argument, which must have the form KEYWORD=VALUE.
std::string keywordValue(const Arguments& arguments, const std::string& keyword)
{
    if (arguments.empty())
        throw UsageError(keyword + " is missing");
    if (arguments[0].rfind(keyword, 0) != 0)
        throw UsageError("expected " + keyword + ", got \"" + arguments[0] + "\"");
    if (arguments.size() > 1)
        throw UsageError("unexpected argument \"" + arguments[1] + "\"");
    return arguments[0].substr(keyword.size());
}

/// Splits a list of names at its commas.
std::vector<std::string> splitNames(const std::string& text)
{
    std::vector<std::string> names;
    std::istringstream stream(text);
    for (std::string name; std::getline(stream, name, ',');)
        names.push_back(name);
    return names;
}

Answer getdmpnode(State& state, const Arguments& arguments)
{
    return nodeOfDisk(state, keywordValue(arguments, "nodename="));
}

Answer getsubpaths(State& state, const Arguments& arguments)
{
    return pathsOfNode(state, keywordValue(arguments, "dmpnodename="));
}

Answer rm(State& state, const Arguments& arguments)
{
    if (arguments.empty() || arguments[0].empty())
        throw UsageError("no node is named");
    if (arguments.size() > 1)
        throw UsageError("unexpected argument \"" + arguments[1] + "\"");
    return removeNode(state, arguments[0]);
}

Answer scandisks(State& state, const Arguments& arguments)
{
    if (arguments.empty())
        return rescan(state, std::nullopt);
    return rescan(state, splitNames(keywordValue(arguments, "device=")));
}

std::string usage(const std::string& program)
{
    std::string text;
    for (const Subcommand& subcommand : subcommands) {
        if (program == subcommand.program)
            text += "usage: " + program + " " + subcommand.name + " " + subcommand.form + "\n";
    }
    return text;
}

Answer dispatch(State& state, const Command& command)
{
    if (command.arguments.empty())
        throw UsageError("no subcommand is given");
    const std::string& name = command.arguments[0];
    for (const Subcommand& subcommand : subcommands) {
        if (command.program == subcommand.program && name == subcommand.name)
            return subcommand.perform(state,
                                      {command.arguments.begin() + 1, command.arguments.end()});
    }
    throw UsageError("unknown subcommand \"" + name + "\"");
}

} // namespace

const std::array<Subcommand, 4> subcommands = {
    Subcommand{"kodmpadm", "getdmpnode", "nodename=DISK", getdmpnode},
    Subcommand{"kodmpadm", "getsubpaths", "dmpnodename=NODE", getsubpaths},
    Subcommand{"kodisk", "rm", "NODE", rm},
    Subcommand{"kodisk", "scandisks", "[device=DISK[,DISK...]]", scandisks}};

bool isSubcommand(const std::string& name)
{
    return std::any_of(subcommands.begin(), subcommands.end(),
                       [&](const Subcommand& subcommand) { return name == subcommand.name; });
}

Answer perform(State& state, const Command& command)
{
    try {
        return dispatch(state, command);
    } catch (const UsageError& error) {
        return {2, {}, error.what(), usage(command.program)};
    }
}

} // namespace simulator
