#ifndef DOCTOR_SAME_DISK_H
#define DOCTOR_SAME_DISK_H

#include <vector>

#include "doctor/multipath_disk.h"

namespace command {

/// The nodes of the volume manager and the disks that the kernel multipaths, each disk once. A node
/// whose paths also belong to a disk of the kernel is merged into that disk; a path is lost when
/// either of them has lost it. Nodes come first.
std::vector<MultipathDisk> eachDiskOnce(std::vector<MultipathDisk> nodes,
                                        std::vector<MultipathDisk> kernelDisks);

} // namespace command

#endif
