#include "doctor/device_reading.h"

namespace command {

DeviceReading deviceReading(const Explanation& explanation)
{
    const DeviceAnswer& device = explanation.device;
    DeviceReading reading{
        device.name, device.owner, {}, device.isPartition, !explanation.warnings.empty()};
    for (const ModuleAnswer& module : explanation.modules) {
        if (module.claim != CLAIM_NONE)
            reading.claimers.push_back(module.driver);
    }
    return reading;
}

} // namespace command
