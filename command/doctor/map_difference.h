#ifndef DOCTOR_MAP_DIFFERENCE_H
#define DOCTOR_MAP_DIFFERENCE_H

#include <optional>

#include "doctor/device_reading.h"
#include "doctor/finding.h"
#include "kernel/block_device.h"

namespace command {

/// How the kernel's map and the library's reading of its path differ; nothing when they agree.
/// `disk` holds the map when it is a partition; null when there is none.
std::optional<Finding> mapDifference(const BlockDevice& map, const DeviceReading& reading,
                                     const BlockDevice* disk);

} // namespace command

#endif
