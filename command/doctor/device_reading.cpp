#include "doctor/device_reading.h"

namespace command {

DeviceReading deviceReading(const Row& explanation)
{
    DeviceReading reading;
    reading.path = explanation["name"];
    if (!explanation["owner"].is_null())
        reading.owner = explanation["owner"];
    for (const Row& module : explanation["modules"]) {
        if (module["claim"] != 0)
            reading.claimers.push_back(module["module"]);
    }
    reading.isPartition = explanation["partition"];
    reading.hasWarnings = !explanation["warnings"].empty();
    return reading;
}

} // namespace command
