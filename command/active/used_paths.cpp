#include "active/used_paths.h"

#include "multipath/disk_paths.h"

namespace command {

std::optional<Texts> usedPaths(const Machine& machine, const std::string& path,
                               const ReadMapStatus& readMapStatus)
{
    const Inventory& inventory = machine.inventory();
    const BlockDevice* device = inventory.at(path);
    const BlockDevice* disk = device == nullptr ? nullptr : diskOf(inventory, *device);
    if (disk == nullptr || kernelDriverOf(*disk) == PathDriver::none)
        return std::nullopt;
    const DiskPaths found = diskPaths(inventory, *disk, readMapStatus);
    if (!found.hasUsedPath())
        return std::nullopt;
    Texts used;
    for (const DiskPath& candidate : found.paths) {
        if (candidate.isUsed == true)
            used.push_back(candidate.name);
    }
    return used;
}

} // namespace command
