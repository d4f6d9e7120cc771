#ifndef NAMES_DRIVERS_H
#define NAMES_DRIVERS_H

#include <memory>
#include <vector>

#include "kernel/device_kind.h"
#include "names/naming_warnings.h"
#include "output/field.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// A driver whose claim module is built into the library.
struct Driver {
    const char* name;              // as users call it
    const char* kernelName;        // in /proc/devices
    std::vector<DeviceKind> kinds; // the devices that it owns to the kernel, and their partitions
    bool asksTools;                // its lookups ask the volume manager's tools
    NameWarner warnOfName;
    std::unique_ptr<CDmpDeviceClaimBase> (*makeModule)();
    bool (*hasModule)(const CDmpDeviceClaimBase& module);
};

/// One driver for each built-in module, in the order in which the manager asks the modules.
const std::vector<Driver>& drivers();

/// The driver of one of a manager's built-in modules; null for no module.
const Driver* driverOf(const CDmpDeviceClaimBase* module);

/// The driver that owns devices of this kind; null for a kind that no module claims.
const Driver* driverOf(DeviceKind kind);

/// The driver's name; none for no driver.
Field ownerField(const Driver* owner);

/// A claim module of the command's own.
struct Module {
    const Driver* driver;
    std::unique_ptr<CDmpDeviceClaimBase> claims;
};

/// A module for each driver, in order. Their trace lines go to `log`.
std::vector<Module> makeModules(const koze_pdk_4_4::CZeTraceLogHandle& log);

} // namespace command

#endif
