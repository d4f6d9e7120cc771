#include "multipath/disk_paths.h"

#include <algorithm>

#include "multipath/map_paths.h"
#include "multipath/nvme_disk_paths.h"
#include "multipath/path_through.h"

namespace command {

namespace {

/// The disk that NVMe multipathing makes of a path:  nvme0c3n1 -> nvme0n1
const BlockDevice* nvmeDiskOf(const Inventory& inventory, const BlockDevice& path)
{
    std::string name = path.kernelName();
    const std::size_t controller = name.find('c'); // the kind says that there is one
    const std::size_t space = name.find('n', controller);
    return inventory.named(name.erase(controller, space - controller));
}

bool isDisk(const BlockDevice& device)
{
    switch (device.kind()) {
    case DeviceKind::multipath:
    case DeviceKind::nvme:
    case DeviceKind::disk:
    case DeviceKind::virtio:
        return true;
    case DeviceKind::partition:
    case DeviceKind::powerPath:
    case DeviceKind::optical:
    case DeviceKind::floppy:
        return false;
    default:
        return !device.isVirtual();
    }
}

DiskPaths singlePath(const BlockDevice& disk)
{
    DiskPath path = pathThrough(disk);
    if (path.state != PathState::offline)
        path.state = PathState::active;
    path.isUsed = path.state == PathState::active;
    return {PathDriver::none, disk.path(), &disk, {std::move(path)}, {}};
}

} // namespace

const char* driverName(PathDriver driver)
{
    switch (driver) {
    case PathDriver::deviceMapper:
        return "device-mapper";
    case PathDriver::nvme:
        return "nvme";
    case PathDriver::kodmp:
        return "kodmp";
    default:
        return nullptr;
    }
}

const char* pathStateName(PathState state)
{
    switch (state) {
    case PathState::active:
        return "active";
    case PathState::standby:
        return "standby";
    case PathState::failed:
        return "failed";
    case PathState::offline:
        return "offline";
    default:
        return "unknown";
    }
}

std::optional<bool> DiskPaths::hasUsedPath() const
{
    std::optional<bool> hasUsed = false;
    for (const DiskPath& path : paths) {
        if (!path.isUsed)
            hasUsed.reset();
        else if (*path.isUsed)
            return true;
    }
    return hasUsed;
}

bool DiskPaths::hasLostPath() const
{
    return std::any_of(paths.begin(), paths.end(), [](const DiskPath& path) {
        return path.state == PathState::failed || path.state == PathState::offline;
    });
}

const BlockDevice* diskOf(const Inventory& inventory, const BlockDevice& device)
{
    const BlockDevice* disk = inventory.parentOf(device);
    if (disk == nullptr)
        disk = &device;
    if (disk->kind() == DeviceKind::nvmePath)
        disk = nvmeDiskOf(inventory, *disk);
    if (disk == nullptr)
        return nullptr;
    if (const BlockDevice* map = inventory.multipathOver(*disk))
        return map;
    return isDisk(*disk) ? disk : nullptr;
}

PathDriver kernelDriverOf(const BlockDevice& disk)
{
    if (disk.kind() == DeviceKind::multipath)
        return PathDriver::deviceMapper;
    return isNvmeMultipathed(disk) ? PathDriver::nvme : PathDriver::none;
}

DiskPaths diskPaths(const Inventory& inventory, const BlockDevice& disk,
                    const ReadMapStatus& readMapStatus)
{
    switch (disk.kind()) {
    case DeviceKind::multipath:
        return mapPaths(inventory, disk, readMapStatus);
    case DeviceKind::nvme:
        return nvmeDiskPaths(inventory, disk);
    default:
        return singlePath(disk);
    }
}

} // namespace command
