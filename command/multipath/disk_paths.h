#ifndef MULTIPATH_DISK_PATHS_H
#define MULTIPATH_DISK_PATHS_H

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "kernel/inventory.h"
#include "kernel/map_status.h"
#include "kernel/nvme.h"

namespace command {

/// What sends a disk's requests through several paths.
enum class PathDriver { none, deviceMapper, nvme, kodmp };

/// The driver as users read it: "device-mapper"; null for none.
const char* driverName(PathDriver driver);

enum class PathState {
    active,  // requests go through it
    standby, // works; is used when others fail or the array prefers it
    unknown, // the device-mapper tells root only
    offline, // the kernel has taken the device out of use
    failed   // the multipath driver has stopped using it
};

inline constexpr PathState allPathStates[] = {PathState::active, PathState::standby,
                                              PathState::unknown, PathState::offline,
                                              PathState::failed};

/// "active", "standby", "unknown", "offline" or "failed".
const char* pathStateName(PathState state);

/// A path to a disk.
struct DiskPath {
    std::string name;                    // "/dev/sda"; "nvme0c1n1" or "nvme1", which have no node
    const BlockDevice* device = nullptr; // null when the kernel has no such device
    std::string group;                   // empty when it is not known
    PathState state = PathState::unknown;
    std::optional<bool> isUsed; // requests go through it, or through it and others by turns
    std::optional<std::uint64_t> failures;    // of the device-mapper
    std::optional<NvmeController> controller; // of NVMe
};

/// A disk and all its paths, in the order of its driver.
struct DiskPaths {
    PathDriver driver = PathDriver::none;
    std::string name;                    // "/dev/mapper/mpatha"; of KoDMP "arr0_17"
    const BlockDevice* device = nullptr; // null when it is no device of the kernel
    std::vector<DiskPath> paths;
    std::error_code error; // why states are not known; permission_denied for all but root

    /// Nothing when it is not known.
    std::optional<bool> hasUsedPath() const;

    /// A path has failed or is offline.
    bool hasLostPath() const;
};

/// The disk of a device, which may be the disk itself, a partition or a path of it. A disk with
/// several paths is its multipath map or its NVMe disk. Null for devices that are no hardware, such
/// as LVM's.
const BlockDevice* diskOf(const Inventory& inventory, const BlockDevice& device);

/// Whether the kernel has a driver over the disk that knows of several paths. REQUIRES: the disk
/// comes from diskOf.
PathDriver kernelDriverOf(const BlockDevice& disk);

/// The paths of a disk as the kernel has them; a disk without such a driver is its own only path.
/// Asks `readMapStatus` about multipath maps only. REQUIRES: the disk comes from diskOf.
DiskPaths diskPaths(const Inventory& inventory, const BlockDevice& disk,
                    const ReadMapStatus& readMapStatus);

} // namespace command

#endif
