#ifndef SIMULATOR_SUBCOMMANDS_H
#define SIMULATOR_SUBCOMMANDS_H

#include <array>
#include <string>
#include <vector>

#include "command.h"

namespace simulator {

struct State;

/// A subcommand of one of the tools, and what carries it out.
struct Subcommand {
    const char* program;
    const char* name;
    const char* form; ///< of its arguments
    Answer (*perform)(State& state, const std::vector<std::string>& arguments);
};

/// All that the tools can be called for.
extern const std::array<Subcommand, 4> subcommands;

/// Whether one of the tools has this subcommand.
bool isSubcommand(const std::string& name);

} // namespace simulator

#endif
