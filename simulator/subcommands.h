#ifndef SIMULATOR_SUBCOMMANDS_H
#define SIMULATOR_SUBCOMMANDS_H

#include <array>
#include <string>

namespace simulator {

struct Subcommand {
    const char* program;
    const char* name;
    const char* form; ///< of its arguments
};

/// All subcommands of the tools.
inline constexpr std::array subcommands = {
    Subcommand{"kodmpadm", "getdmpnode", "nodename=DISK"},
    Subcommand{"kodmpadm", "getsubpaths", "dmpnodename=NODE"}, Subcommand{"kodisk", "rm", "NODE"},
    Subcommand{"kodisk", "scandisks", "[device=DISK[,DISK...]]"}};

/// Whether one of the tools has this subcommand.
inline bool isSubcommand(const std::string& name)
{
    for (const Subcommand& subcommand : subcommands) {
        if (name == subcommand.name)
            return true;
    }
    return false;
}

} // namespace simulator

#endif
