#ifndef DOCTOR_REDUNDANCY_H
#define DOCTOR_REDUNDANCY_H

#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/multipath_disk.h"

namespace command {

/// Reports whether every path of the disk can be used. `expectedPaths` is 0 when any number will
/// do.
void checkRedundancy(const MultipathDisk& disk, std::size_t expectedPaths,
                     const FindingReceiver& report);

/// Reports a path of the disk that cannot be used. `path` is its name.
void checkPath(const MultipathDisk& disk, const std::string& path, const FindingReceiver& report);

/// Reports once that the states of some disks' paths are not known.
void checkStates(const std::vector<MultipathDisk>& disks, const FindingReceiver& report);

} // namespace command

#endif
