#ifndef TOOL_COMMANDS_H
#define TOOL_COMMANDS_H

#include <string>
#include <vector>

namespace command {

// The command lines of the volume manager's tools, as the library builds them. Nothing is run.

/// Asks for the node that holds an operating-system disk, such as sdc.
std::string nodeQuery(const std::string& disk);

/// Asks for the paths of a node.
std::string pathQuery(const std::string& node);

/// Removes a node.
std::string removal(const std::string& node);

/// Scans disks, or every disk when none is named.
std::string rescan(const std::vector<std::string>& disks);

} // namespace command

#endif
