#include "doctor/multipath_disk.h"

#include <algorithm>

namespace command {

const char* pathStateName(PathState state)
{
    switch (state) {
    case PathState::active:
        return "active";
    case PathState::standby:
        return "standby";
    case PathState::offline:
        return "offline";
    case PathState::failed:
        return "failed";
    default:
        return "unknown";
    }
}

std::size_t MultipathDisk::usablePaths() const
{
    const auto usable = std::count_if(paths.begin(), paths.end(),
                                      [](const DiskPath& path) { return path.canBeUsed(); });
    return static_cast<std::size_t>(usable);
}

std::string lostPaths(const MultipathDisk& disk)
{
    std::string text;
    for (const DiskPath& path : disk.paths) {
        if (!path.canBeUsed())
            text += (text.empty() ? "" : ", ") + path.name + ' ' + pathStateName(path.state);
    }
    return text;
}

} // namespace command
