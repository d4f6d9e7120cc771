#include "doctor/multipath_disk.h"

#include <algorithm>
#include <string_view>

#include "text/text.h"
#include "text/word_list.h"

namespace command {

std::size_t MultipathDisk::usablePaths() const
{
    const auto usable = std::count_if(paths.begin(), paths.end(),
                                      [](const ExaminedPath& path) { return path.canBeUsed(); });
    return static_cast<std::size_t>(usable);
}

MultipathDisk examined(const DiskPaths& disk)
{
    constexpr std::string_view devFolder = "/dev/";
    MultipathDisk result{disk.name, driverName(disk.driver), {}, disk.error};
    for (const DiskPath& path : disk.paths) {
        const bool hasNode = startsWith(path.name, devFolder);
        result.paths.push_back({hasNode ? path.name.substr(devFolder.size()) : path.name,
                                path.state, path.isUsed.value_or(false)});
    }
    return result;
}

std::string lostPaths(const MultipathDisk& disk)
{
    std::vector<std::string> lost;
    for (const ExaminedPath& path : disk.paths) {
        if (!path.canBeUsed())
            lost.push_back(path.name + ' ' + pathStateName(path.state) +
                           (path.isNodes ? " in node " + disk.node : ""));
    }
    return joined(lost);
}

} // namespace command
