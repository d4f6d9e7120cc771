#ifndef TESTS_COMMAND_MULTIPATH_SHOWN_PATHS_H
#define TESTS_COMMAND_MULTIPATH_SHOWN_PATHS_H

#include <string>

#include "multipath/disk_paths.h"

/// A line for each path:  name group state used
inline std::string shown(const command::DiskPaths& disk)
{
    std::string text;
    for (const command::DiskPath& path : disk.paths) {
        const char* used = !path.isUsed ? "?" : *path.isUsed ? "yes" : "no";
        text += path.name + ' ' + (path.group.empty() ? "-" : path.group) + ' ' +
                pathStateName(path.state) + ' ' + used + '\n';
    }
    return text;
}

#endif
