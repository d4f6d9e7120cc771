#ifndef NAMES_AGREEMENT_H
#define NAMES_AGREEMENT_H

#include <optional>

#include "names/device_answer.h"

namespace command {

/// The driver that owns a device by the kernel's facts; null when none of the library's does. The
/// paths of a multipath map, and their partitions, are the device-mapper's.
const Driver* kernelOwner(const Inventory& inventory, const BlockDevice& device);

/// Whether the name tells what the kernel has there: the owner, and for owned devices whether it is
/// a partition, of which disk, and its number, as far as the driver reads it back. Nothing when the
/// kernel has no device there.
std::optional<bool> agrees(const DeviceAnswer& answer);

} // namespace command

#endif
