#include "names/drivers.h"

#include <algorithm>
#include <utility>

#include "scsitool/dmp_built_in_modules.h"

namespace command {

namespace {

/// What the library does not know about a module's driver.
struct Facts {
    const char* name;
    const char* kernelName;
    std::vector<DeviceKind> kinds;
    bool asksTools;
    NameWarner warnOfName;
};

/// Not defined in general, so that a built-in module without facts does not build.
template <class ClaimModule>
Facts factsOf();

template <>
Facts factsOf<CNativePathClaim>()
{
    return {"native", "sd", {DeviceKind::disk}, true, warnOfNumberedName};
}

template <>
Facts factsOf<CDmpPowerPathClaim>()
{
    return {"powerpath", "emcpower", {DeviceKind::powerPath}, false, warnOfNumberedName};
}

template <>
Facts factsOf<CDmpDeviceMapperClaim>()
{
    return {"device-mapper",
            "device-mapper",
            {DeviceKind::multipath, DeviceKind::multipathPartition},
            false,
            warnOfMapperName};
}

template <class ClaimModule>
Driver makeDriver()
{
    Facts facts = factsOf<ClaimModule>();
    return {
        facts.name,
        facts.kernelName,
        std::move(facts.kinds),
        facts.asksTools,
        facts.warnOfName,
        []() -> std::unique_ptr<CDmpDeviceClaimBase> { return std::make_unique<ClaimModule>(); },
        [](const CDmpDeviceClaimBase& module) {
            return dynamic_cast<const ClaimModule*>(&module) != nullptr;
        }};
}

template <class... ClaimModules>
std::vector<Driver> makeDrivers(ModuleList<ClaimModules...> /*modules*/)
{
    return {makeDriver<ClaimModules>()...};
}

} // namespace

const std::vector<Driver>& drivers()
{
    static const std::vector<Driver> all = makeDrivers(BuiltInModules());
    return all;
}

const Driver* driverOf(const CDmpDeviceClaimBase* module)
{
    if (module == nullptr)
        return nullptr;
    return &*std::find_if(drivers().begin(), drivers().end(),
                          [&](const Driver& driver) { return driver.hasModule(*module); });
}

const Driver* driverOf(DeviceKind kind)
{
    const auto found = std::find_if(drivers().begin(), drivers().end(), [&](const Driver& driver) {
        return std::find(driver.kinds.begin(), driver.kinds.end(), kind) != driver.kinds.end();
    });
    return found == drivers().end() ? nullptr : &*found;
}

Field ownerField(const Driver* owner)
{
    return owner == nullptr ? Field() : Field(std::string(owner->name));
}

std::vector<Module> makeModules(const koze_pdk_4_4::CZeTraceLogHandle& log)
{
    std::vector<Module> modules;
    for (const Driver& driver : drivers()) {
        modules.push_back({&driver, driver.makeModule()});
        modules.back().claims->registerTraceLog(log);
    }
    return modules;
}

} // namespace command
