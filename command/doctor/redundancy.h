#ifndef DOCTOR_REDUNDANCY_H
#define DOCTOR_REDUNDANCY_H

#include "doctor/finding.h"
#include "doctor/multipath_disk.h"

namespace command {

/// Reports whether every path of the disk can be used. `expectedPaths` is 0 when any number will
/// do.
void checkRedundancy(const MultipathDisk& disk, std::size_t expectedPaths,
                     const FindingReceiver& report);

} // namespace command

#endif
