#ifndef SIMULATOR_COMMAND_H
#define SIMULATOR_COMMAND_H

#include <string>
#include <vector>

namespace simulator {

/// A call: the tool's name without its folder, and the arguments.
struct Command {
    std::string program;
    std::vector<std::string> arguments;

    bool operator==(const Command& other) const
    {
        return program == other.program && arguments == other.arguments;
    }
};

/// The answer to a call.
struct Answer {
    int result = 0; ///< see endingOf
    std::vector<std::string> lines;
    std::string message; ///< a line for standard error, without its end
    std::string usage{}; ///< lines that follow the message
};

} // namespace simulator

#endif
