#ifndef DOCTOR_MAP_DIFFERENCE_H
#define DOCTOR_MAP_DIFFERENCE_H

#include <optional>

#include "doctor/device_reading.h"
#include "doctor/finding.h"
#include "kernel/kernel_maps.h"

namespace command {

/// What differs between a map of the kernel and the library's reading of its node; nothing when
/// they agree.
std::optional<Finding> mapDifference(const KernelMap& map, const DeviceReading& reading);

} // namespace command

#endif
