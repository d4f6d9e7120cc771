#ifndef MULTIPATH_NODE_PATHS_H
#define MULTIPATH_NODE_PATHS_H

#include "multipath/disk_paths.h"
#include "multipath/disk_question.h"

namespace command {

/// The paths of the volume manager's node in an answer, in the order of its table. A path's group
/// is its type, such as "PRIMARY". Paths that are enabled and active are used; when there are none,
/// the first one that is enabled, which lookups choose.
DiskPaths nodePaths(const Inventory& inventory, const DiskAnswer& answer);

} // namespace command

#endif
