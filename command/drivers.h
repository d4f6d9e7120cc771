#ifndef DRIVERS_H
#define DRIVERS_H

#include <memory>
#include <vector>

#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// What users call the driver of a module: "native", "powerpath" or "device-mapper"; null for no
/// module.
const char* driverName(const CDmpDeviceClaimBase* module);

/// Whether the module's lookups ask the volume manager's tools; false for no module.
bool asksTools(const CDmpDeviceClaimBase* module);

/// Modules of the command's own, in the order in which the manager asks its modules.
std::vector<std::unique_ptr<CDmpDeviceClaimBase>>
makeModules(const koze_pdk_4_4::CZeTraceLogHandle& log);

} // namespace command

#endif
