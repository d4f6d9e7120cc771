#ifndef DOCTOR_KERNEL_DISKS_H
#define DOCTOR_KERNEL_DISKS_H

#include <vector>

#include "doctor/multipath_disk.h"
#include "kernel/inventory.h"

namespace command {

/// The disks that the kernel itself multipaths, with their paths: maps of the device-mapper and
/// NVMe disks.
std::vector<MultipathDisk> kernelDisks(const Inventory& inventory,
                                       const ReadMapStatus& readMapStatus);

} // namespace command

#endif
