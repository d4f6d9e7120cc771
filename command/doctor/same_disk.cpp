#include "doctor/same_disk.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>

namespace command {

namespace {

using DiskOfPath = std::unordered_map<std::string, MultipathDisk*>; // by the path's name

DiskOfPath disksByPath(std::vector<MultipathDisk>& disks)
{
    DiskOfPath found;
    for (MultipathDisk& disk : disks) {
        for (const ExaminedPath& path : disk.paths)
            found.emplace(path.name, &disk);
    }
    return found;
}

/// The disk that has one of the node's paths; null when there is none.
MultipathDisk* diskOf(const MultipathDisk& node, const DiskOfPath& disks)
{
    for (const ExaminedPath& path : node.paths) {
        const auto found = disks.find(path.name);
        if (found != disks.end())
            return found->second;
    }
    return nullptr;
}

void addPath(MultipathDisk& disk, ExaminedPath added)
{
    added.isNodes = true;
    const auto own =
        std::find_if(disk.paths.begin(), disk.paths.end(),
                     [&](const ExaminedPath& path) { return path.name == added.name; });
    if (own == disk.paths.end())
        disk.paths.push_back(std::move(added));
    else if (own->state == PathState::unknown || (own->canBeUsed() && !added.canBeUsed()))
        *own = std::move(added);
}

void addNode(MultipathDisk& disk, const MultipathDisk& node)
{
    disk.node = node.device;
    for (const ExaminedPath& path : node.paths)
        addPath(disk, path);
    const bool areKnown =
        std::none_of(disk.paths.begin(), disk.paths.end(),
                     [](const ExaminedPath& path) { return path.state == PathState::unknown; });
    if (areKnown)
        disk.error = {};
}

} // namespace

std::vector<MultipathDisk> eachDiskOnce(std::vector<MultipathDisk> nodes,
                                        std::vector<MultipathDisk> kernelDisks)
{
    const DiskOfPath disks = disksByPath(kernelDisks);
    std::vector<MultipathDisk> all;
    for (MultipathDisk& node : nodes) {
        MultipathDisk* disk = diskOf(node, disks);
        if (disk != nullptr && disk->node.empty())
            addNode(*disk, node);
        else
            all.push_back(std::move(node));
    }
    std::move(kernelDisks.begin(), kernelDisks.end(), std::back_inserter(all));
    return all;
}

} // namespace command
