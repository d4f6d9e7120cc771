#include "doctor/multipath_disk.h"

#include <algorithm>

namespace command {

std::size_t MultipathDisk::usablePaths() const
{
    const auto usable = std::count_if(paths.begin(), paths.end(),
                                      [](const ExaminedPath& path) { return path.canBeUsed(); });
    return static_cast<std::size_t>(usable);
}

std::string lostPaths(const MultipathDisk& disk)
{
    std::string text;
    for (const ExaminedPath& path : disk.paths) {
        if (!path.canBeUsed())
            text += (text.empty() ? "" : ", ") + path.name + ' ' + pathStateName(path.state);
    }
    return text;
}

} // namespace command
