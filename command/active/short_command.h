#ifndef ACTIVE_SHORT_COMMAND_H
#define ACTIVE_SHORT_COMMAND_H

#include <string>
#include <string_view>

namespace command {

/// Tool and subcommand, as printable words:
/// "kodmpadm getdmpnode" of "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc".
std::string shortCommand(std::string_view command);

} // namespace command

#endif
