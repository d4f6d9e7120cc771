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

/// Holds `readings`, of all the machine's block devices and each once, against what the kernel has.
/// The paths in `given` are expected to be block devices, whichever driver owns them. Takes time in
/// proportion to the devices.
void checkDevices(const SystemPaths& system, const std::vector<DeviceReading>& readings,
                  const std::vector<std::string>& given, const FindingReceiver& report);

} // namespace command

#endif
