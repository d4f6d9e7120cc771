#ifndef MULTIPATH_NVME_DISK_PATHS_H
#define MULTIPATH_NVME_DISK_PATHS_H

#include "multipath/disk_paths.h"

namespace command {

/// Whether the kernel's NVMe driver knows of several paths to the disk, so that it belongs to a
/// subsystem rather than to a controller.
bool isNvmeMultipathed(const BlockDevice& disk);

/// The paths of an NVMe disk. A path's group is its ANA state. The kernel uses the optimized paths;
/// when there are none, the others that the array offers.
DiskPaths nvmeDiskPaths(const Inventory& inventory, const BlockDevice& disk);

} // namespace command

#endif
