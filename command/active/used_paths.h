#ifndef ACTIVE_USED_PATHS_H
#define ACTIVE_USED_PATHS_H

#include <optional>
#include <string>

#include "kernel/machine.h"
#include "kernel/map_status.h"
#include "output/field.h"

namespace command {

/// The paths that the kernel's own multipathing uses for the disk of a device: `path` names the
/// disk, a partition or a path of it. Nothing when the disk is neither a map of the device-mapper
/// nor an NVMe disk, and when the kernel does not say: only root may ask about maps.
std::optional<Texts> usedPaths(const Machine& machine, const std::string& path,
                               const ReadMapStatus& readMapStatus);

} // namespace command

#endif
