#include "drivers.h"

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"

namespace command {

const char* driverName(const CDmpDeviceClaimBase* module)
{
    if (dynamic_cast<const CDmpDeviceMapperClaim*>(module) != nullptr)
        return "device-mapper";
    if (dynamic_cast<const CDmpPowerPathClaim*>(module) != nullptr)
        return "powerpath";
    if (dynamic_cast<const CNativePathClaim*>(module) != nullptr)
        return "native";
    return nullptr;
}

bool asksTools(const CDmpDeviceClaimBase* module)
{
    return dynamic_cast<const CNativePathClaim*>(module) != nullptr;
}

std::vector<std::unique_ptr<CDmpDeviceClaimBase>>
makeModules(const koze_pdk_4_4::CZeTraceLogHandle& log)
{
    std::vector<std::unique_ptr<CDmpDeviceClaimBase>> modules;
    modules.push_back(std::make_unique<CNativePathClaim>());
    modules.push_back(std::make_unique<CDmpPowerPathClaim>());
    modules.push_back(std::make_unique<CDmpDeviceMapperClaim>());
    for (const auto& module : modules)
        module->registerTraceLog(log);
    return modules;
}

} // namespace command
