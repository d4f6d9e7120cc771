#ifndef DOCTOR_SAME_DISK_H
#define DOCTOR_SAME_DISK_H

#include <vector>

#include "doctor/multipath_disk.h"

namespace command {

/// The nodes of the volume manager and the disks that the kernel multipaths, each disk once: a node
/// whose paths are a kernel's disk's, too, is added to that disk. A path that one of both has lost
/// is lost. Nodes come first.
std::vector<MultipathDisk> eachDiskOnce(std::vector<MultipathDisk> nodes,
                                        std::vector<MultipathDisk> kernelDisks);

} // namespace command

#endif
