#ifndef MULTIPATH_PATH_THROUGH_H
#define MULTIPATH_PATH_THROUGH_H

#include "multipath/disk_paths.h"

namespace command {

/// The path through a device. Its state is offline when the kernel has taken the device out of use,
/// else unknown.
DiskPath pathThrough(const BlockDevice& device);

} // namespace command

#endif
