#ifndef TESTS_COMMAND_ACTIVE_RUNNING_TOOLS_H
#define TESTS_COMMAND_ACTIVE_RUNNING_TOOLS_H

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

/// The processes of the simulated tools that use this state file.
inline std::vector<std::string> runningTools(const std::filesystem::path& state)
{
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = textOf(entry.path() / "comm");
        const std::string environment = textOf(entry.path() / "environ");
        const bool isTool = name == "kodmpadm\n" || name == "kodisk\n";
        if (isTool && environment.find(state.string()) != std::string::npos)
            found.push_back(entry.path());
    }
    return found;
}

#endif
