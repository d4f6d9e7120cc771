#include "multipath/nvme_disk_paths.h"

#include <algorithm>

#include "multipath/path_through.h"
#include "text/text.h"

namespace command {

namespace {

constexpr char optimized[] = "optimized";
constexpr char nonOptimized[] = "non-optimized";
constexpr char lost[] = "persistent-loss";

/// Whether the controller takes requests.
std::optional<bool> isLive(const NvmeController& controller)
{
    return controller.state ? std::optional(*controller.state == "live") : std::nullopt;
}

/// A live controller without a path serves other disks of its subsystem: it has lost nothing.
bool isPath(const NvmePath& path)
{
    return path.device != nullptr || isLive(path.controller) == false;
}

/// Without ANA, all paths are as good as optimized ones. The controller of a path without a device
/// is not live, see isPath.
PathState stateOf(const NvmePath& path)
{
    const std::optional<bool> live = isLive(path.controller);
    if (!live)
        return PathState::unknown;
    return *live && path.anaState != lost ? PathState::standby : PathState::failed;
}

/// How early the kernel chooses a working path by its ANA state; nothing when it does not.
std::optional<int> rankOf(const DiskPath& path)
{
    if (path.state != PathState::standby)
        return std::nullopt;
    if (path.group.empty() || path.group == optimized)
        return 0;
    return path.group == nonOptimized ? std::optional(1) : std::nullopt;
}

DiskPath diskPath(const NvmePath& path)
{
    DiskPath made = path.device == nullptr ? DiskPath() : pathThrough(*path.device);
    if (path.device == nullptr)
        made.name = path.controller.name;
    made.group = path.anaState.value_or("");
    made.state = stateOf(path);
    if (made.state != PathState::unknown)
        made.isUsed = false;
    made.controller = path.controller;
    return made;
}

void markUsed(std::vector<DiskPath>& paths)
{
    std::optional<int> best;
    for (const DiskPath& path : paths) {
        const std::optional<int> rank = rankOf(path);
        if (rank && (!best || *rank < *best))
            best = rank;
    }
    for (DiskPath& path : paths) {
        if (!best || rankOf(path) != best)
            continue;
        path.state = PathState::active;
        path.isUsed = true;
    }
}

} // namespace

bool isNvmeMultipathed(const BlockDevice& disk)
{
    return disk.kind() == DeviceKind::nvme && startsWith(disk.container(), "nvme-subsys");
}

DiskPaths nvmeDiskPaths(const Inventory& inventory, const BlockDevice& disk)
{
    DiskPaths paths{
        isNvmeMultipathed(disk) ? PathDriver::nvme : PathDriver::none, disk.path(), &disk, {}, {}};
    for (const NvmePath& path : nvmePaths(inventory, disk)) {
        if (isPath(path))
            paths.paths.push_back(diskPath(path));
    }
    markUsed(paths.paths);
    return paths;
}

} // namespace command
