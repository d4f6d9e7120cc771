#ifndef MULTIPATH_MAP_PATHS_H
#define MULTIPATH_MAP_PATHS_H

#include "multipath/disk_paths.h"

namespace command {

/// The paths of a multipath map. Where its status cannot be read, they are the map's members, whose
/// states are unknown but for offline devices.
DiskPaths mapPaths(const Inventory& inventory, const BlockDevice& map,
                   const ReadMapStatus& readMapStatus);

} // namespace command

#endif
