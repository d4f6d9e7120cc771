#ifndef DOCTOR_DEVICE_EXAMINATION_H
#define DOCTOR_DEVICE_EXAMINATION_H

#include <filesystem>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "row.h"

namespace command {

/// Where a machine shows its block devices.
struct Places {
    std::filesystem::path sysfsBlock = "/sys/class/block";
    std::filesystem::path dev = "/dev";
    std::filesystem::path drivers = "/proc/devices";
};

/// Holds what the library says of a machine's block devices against what the kernel has. `names`
/// are their explanations. The paths in `given` are expected to be block devices, whoever owns
/// them.
void examineDevices(const Places& places, const Row& names, const std::vector<std::string>& given,
                    const FindingReceiver& report);

} // namespace command

#endif
