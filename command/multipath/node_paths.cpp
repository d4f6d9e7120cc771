#include "multipath/node_paths.h"

#include <algorithm>

#include "multipath/path_through.h"

namespace command {

namespace {

PathState stateOf(const kovm::Row& row)
{
    if (!row.isEnabled())
        return PathState::failed;
    return row.isActive() ? PathState::active : PathState::standby;
}

/// The path keeps the name of the row, also when the kernel has no such device.
DiskPath pathOf(const Inventory& inventory, const kovm::Row& row)
{
    const std::string name = "/dev/" + row.name;
    const BlockDevice* device = inventory.named(row.name);
    DiskPath path = device == nullptr ? DiskPath() : pathThrough(*device);
    path.name = name;
    path.group = row.type;
    if (path.state != PathState::offline)
        path.state = stateOf(row);
    path.isUsed = path.state == PathState::active;
    return path;
}

} // namespace

DiskPaths nodePaths(const Inventory& inventory, const DiskAnswer& answer)
{
    DiskPaths disk{PathDriver::kodmp, answer.node, nullptr, {}, {}};
    kovm::RowReader reader(answer.pathTable);
    for (kovm::Row row; reader.next(row);)
        disk.paths.push_back(pathOf(inventory, row));
    if (disk.hasUsedPath() == true)
        return disk;
    const auto waiting =
        std::find_if(disk.paths.begin(), disk.paths.end(),
                     [](const DiskPath& path) { return path.state == PathState::standby; });
    if (waiting != disk.paths.end()) {
        waiting->state = PathState::active;
        waiting->isUsed = true;
    }
    return disk;
}

} // namespace command
