#ifndef ACTIVE_USED_PATHS_H
#define ACTIVE_USED_PATHS_H

#include <optional>
#include <string>

#include "kernel/machine.h"
#include "kernel/map_status.h"
#include "output/field.h"

namespace command {

/// The paths through which the kernel's own multipathing sends the requests of the disk that a path
/// names, is a partition of or is a path of: a map of the device-mapper or an NVMe disk. Nothing
/// for other disks, and when the kernel does not say: only root may ask about maps.
std::optional<Texts> usedPaths(const Machine& machine, const std::string& path,
                               const ReadMapStatus& readMapStatus);

} // namespace command

#endif
