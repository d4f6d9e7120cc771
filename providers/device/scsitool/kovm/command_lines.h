#ifndef KOVM_COMMAND_LINES_H
#define KOVM_COMMAND_LINES_H

#include <string>
#include <vector>

namespace kovm {

// The command lines of the volume manager's tools. Each piece carries its own spaces, so that more
// than one may separate two arguments: the runner splits at runs of spaces. Names are inserted as
// they are, up to their first NUL.

inline constexpr char toolDirectory[] = "/usr/sbin/";
inline constexpr char adminTool[] = "kodmpadm  ";
inline constexpr char diskTool[] = "kodisk  ";

/// Asks for the node that holds an operating-system disk, such as sdc.
std::string nodeQuery(const std::string& disk);

/// Asks for the paths of a node.
std::string pathQuery(const std::string& node);

/// Removes a node from the volume manager.
std::string removal(const std::string& node);

/// Scans the disks, or every disk when their list, joined by commas, is empty.
std::string rescan(const std::vector<std::string>& disks);

} // namespace kovm

#endif
