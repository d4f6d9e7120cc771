#ifndef DOCTOR_DEVICE_CHECKS_H
#define DOCTOR_DEVICE_CHECKS_H

#include <filesystem>
#include <string>
#include <vector>

#include "doctor/device_reading.h"
#include "doctor/finding.h"

namespace command {

/// Where a machine shows its block devices.
struct SystemPaths {
    std::filesystem::path sysfsBlock = "/sys/class/block";
    std::filesystem::path dev = "/dev";
    std::filesystem::path drivers = "/proc/devices";
};

/// Compares `readings`, one for each of the machine's block devices, with what the kernel has.
/// Reports each path in `given` that is no block device, also when no driver owns it. Takes time in
/// proportion to the devices.
void checkDevices(const SystemPaths& system, const std::vector<DeviceReading>& readings,
                  const std::vector<std::string>& given, const FindingReceiver& report);

} // namespace command

#endif
