#ifndef DOCTOR_MULTIPATH_DISK_H
#define DOCTOR_MULTIPATH_DISK_H

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

#include "multipath/disk_paths.h"

namespace command {

/// A path of an examined disk. An unknown state counts as one that can be used.
struct ExaminedPath {
    std::string name; // of the kernel, or of the volume manager
    PathState state;
    bool isUsed = false;  // carries the I/O now
    bool isNodes = false; // the state is that of a kernel's disk's node

    bool canBeUsed() const { return state < PathState::offline; }
};

/// A disk with all its paths.
struct MultipathDisk {
    std::string device; // its path, or the name of the volume manager's node
    const char* driver; // "device-mapper", "nvme" or "kodmp"
    std::vector<ExaminedPath> paths;
    std::error_code error = {}; // why states are not known
    std::string node = {};      // of the volume manager, for a disk that the kernel has too

    std::size_t usablePaths() const;
};

/// What is examined of a disk.
MultipathDisk examined(const DiskPaths& disk);

/// Each path that cannot be used and its state: "sdb failed, sdd offline", with "in node arr0_17"
/// behind a state that the kernel does not share.
std::string lostPaths(const MultipathDisk& disk);

} // namespace command

#endif
