#include "kovm/command_lines.h"

#include <initializer_list>

namespace kovm {

namespace {

std::string commandLine(std::initializer_list<const char*> pieces)
{
    std::string line(toolDirectory);
    for (const char* piece : pieces)
        line += piece;
    return line;
}

/// The names with commas between them.
std::string commaList(const std::vector<std::string>& names)
{
    std::string list;
    const char* separator = "";
    for (const std::string& name : names) {
        (list += separator) += name;
        separator = ",";
    }
    return list;
}

} // namespace

std::string nodeQuery(const std::string& disk)
{
    return commandLine({adminTool, " getdmpnode ", " nodename=", disk.c_str()});
}

std::string pathQuery(const std::string& node)
{
    return commandLine({adminTool, " getsubpaths ", " dmpnodename=", node.c_str()});
}

std::string removal(const std::string& node)
{
    return commandLine({diskTool, " rm ", node.c_str()});
}

std::string rescan(const std::vector<std::string>& disks)
{
    const std::string list = commaList(disks);
    return list.empty() ? commandLine({diskTool, " scandisks "})
                        : commandLine({diskTool, " scandisks ", " device=", list.c_str()});
}

} // namespace kovm
