#ifndef DOCTOR_DEVICE_READING_H
#define DOCTOR_DEVICE_READING_H

#include <string>
#include <vector>

#include "names/explanation.h"

namespace command {

/// How the library reads a device's path: the part of an explanation that is compared with the
/// kernel. Small, because a machine may have 100,000 devices, and all readings are kept at once.
struct DeviceReading {
    std::string path;
    const Driver* owner = nullptr;       // null when nobody claims the path
    std::vector<const Driver*> claimers; // in the order in which they are asked
    bool isPartition = false;
    bool hasWarnings = false;
};

DeviceReading deviceReading(const Explanation& explanation);

} // namespace command

#endif
