#ifndef DOCTOR_DEVICE_CHECKS_H
#define DOCTOR_DEVICE_CHECKS_H

#include <string>
#include <vector>

#include "doctor/device_reading.h"
#include "doctor/finding.h"
#include "kernel/inventory.h"

namespace command {

/// Compares `readings`, one for each of the machine's block devices, with what the kernel has.
/// `driverList` is the kernel's file of its drivers, /proc/devices.
/// When paths are `given`, only these are examined: each that is no block device is reported, also
/// when no driver owns it. Takes time in proportion to the devices.
void checkDevices(const Inventory& kernel, const std::string& driverList,
                  const std::vector<DeviceReading>& readings, const std::vector<std::string>& given,
                  const FindingReceiver& report);

} // namespace command

#endif
