#include "names/explanation.h"

#include "names/kernel_text.h"

namespace command {

namespace {

using ModuleAnswers = std::vector<ModuleAnswer>;

/// The drivers of the modules whose claim is `claim`.
std::vector<const Driver*> driversClaiming(const ModuleAnswers& modules, std::uint32_t claim)
{
    std::vector<const Driver*> found;
    for (const ModuleAnswer& module : modules) {
        if (module.claim == claim)
            found.push_back(module.driver);
    }
    return found;
}

const char* winningRule(const DeviceAnswer& device, const ModuleAnswers& modules)
{
    if (device.owner == nullptr)
        return "nobody";
    const std::size_t equals = driversClaiming(modules, device.claim).size();
    if (equals > 1)
        return "first of equals";
    const std::size_t without = driversClaiming(modules, CLAIM_NONE).size();
    return equals + without == modules.size() ? "only claim" : "strongest claim";
}

std::string prefixOf(const Driver* owner, const ModuleAnswers& modules)
{
    for (const ModuleAnswer& module : modules) {
        if (module.driver == owner)
            return module.prefixes.front();
    }
    return {};
}

Warning equalClaimsWarning(const std::string& first, const std::string& second)
{
    return {"equal-claims", first + " and " + second + " claim this path equally strongly. " +
                                first +
                                " gets it because it is asked first. Use a path that holds "
                                "the prefix of one driver only."};
}

Warning otherPathWarning(const BlockDevice& target)
{
    return {"leads-to-claimed-device", "This leads to " + target.path() +
                                           ", which a driver claims. Ask about that path, or use "
                                           "--resolve."};
}

std::vector<Warning> warningsOf(const DeviceAnswer& device, const ModuleAnswers& modules)
{
    std::vector<Warning> warnings;
    const std::vector<const Driver*> equals = driversClaiming(modules, device.claim);
    if (device.owner != nullptr && equals.size() > 1)
        warnings.push_back(equalClaimsWarning(equals[0]->name, equals[1]->name));
    const NamedDevice named{device.name, prefixOf(device.owner, modules), device.isPartition,
                            device.disk.value_or("")};
    if (device.owner == nullptr)
        warnOfUnclaimedName(named, warnings);
    else
        warnOfClaimedName(named, device.owner->warnOfName, warnings);
    return warnings;
}

Document moduleDocument(const ModuleAnswer& module)
{
    return Document::Record{{"module", module.driver->name},
                            {"claim", module.claim},
                            {"prefixes", Document::list(module.prefixes)}};
}

Document partitionDocument(const BlockDevice* partition)
{
    return Document::Record{{"partnum", *partition->partnum()}, {"path", partition->path()}};
}

Inventory::Devices partitionsOf(const DeviceAnswer& answer)
{
    const BlockDevice* device = answer.device();
    return device == nullptr ? Inventory::Devices()
                             : answer.kernel.machine()->inventory().partitionsOf(*device);
}

Document warningDocument(const Warning& warning)
{
    return Document::Record{{"code", warning.code}, {"text", warning.text}};
}

} // namespace

Explanation explanation(CDmpClaimManager& manager, const std::vector<Module>& modules,
                        const std::string& path, const DeviceLookup& kernel)
{
    ModuleAnswers answers;
    for (const Module& module : modules)
        answers.push_back(
            {module.driver, module.claims->claim(path), module.claims->getDeviceClaimStrings()});
    const DeviceAnswer device = deviceAnswer(manager, path, kernel);
    std::vector<Warning> warnings = warningsOf(device, answers);
    if (const BlockDevice* target = claimedTarget(manager, device))
        warnings.push_back(otherPathWarning(*target));
    return {device, winningRule(device, answers), answers, warnings};
}

Document::Record explanationRecord(const Explanation& explanation)
{
    Document::Record record;
    const DeviceAnswer& device = explanation.device;
    const bool asksKernel = device.kernel.machine() != nullptr;
    for (const Column<DeviceAnswer>& column : asksKernel ? deviceColumns() : nameColumns())
        record.emplace_back(column.heading.key(), column.value(device));
    if (asksKernel)
        record.emplace_back("partitions", Document::list(partitionsOf(device), partitionDocument));
    record.emplace_back("rule", explanation.rule);
    record.emplace_back("modules", Document::list(explanation.modules, moduleDocument));
    record.emplace_back("warnings", Document::list(explanation.warnings, warningDocument));
    return record;
}

} // namespace command
