#ifndef DOCTOR_DEVICE_READING_H
#define DOCTOR_DEVICE_READING_H

#include <string>
#include <vector>

#include "row.h"

namespace command {

/// How the library reads a device's path: what of an explanation is held against the kernel. A
/// machine may have 100,000 devices, and all their readings are kept at once.
struct DeviceReading {
    std::string path;
    std::string owner;                 // see driverName; empty when nobody claims the path
    std::vector<std::string> claimers; // the drivers that claim it, in the order of asking
    bool isPartition = false;
    bool hasWarnings = false;
};

DeviceReading deviceReading(const Row& explanation);

} // namespace command

#endif
