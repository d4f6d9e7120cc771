#ifndef COMMANDS_H
#define COMMANDS_H

#include <vector>

#include "cli/subcommand.h"

namespace command {

/// All subcommands, in the order in which help lists them.
const std::vector<Subcommand>& subcommands();

} // namespace command

#endif
