#include "explanation.h"

#include <algorithm>

#include "device_row.h"
#include "drivers.h"
#include "naming_warnings.h"

namespace {

using command::Row;

Row moduleAnswer(CDmpDeviceClaimBase& module, const std::string& path)
{
    return {{"module", command::driverName(&module)},
            {"claim", module.claim(path)},
            {"prefixes", module.getDeviceClaimStrings()}};
}

/// The names of the modules whose claim is `claim`.
std::vector<std::string> modulesClaiming(const Row& modules, const Row& claim)
{
    std::vector<std::string> names;
    for (const Row& module : modules) {
        if (module["claim"] == claim)
            names.push_back(module["module"]);
    }
    return names;
}

const char* winningRule(const Row& device, const Row& modules)
{
    if (device["owner"].is_null())
        return "nobody";
    const std::size_t equals = modulesClaiming(modules, device["claim"]).size();
    if (equals > 1)
        return "first of equals";
    const std::size_t without = modulesClaiming(modules, CLAIM_NONE).size();
    return equals + without == modules.size() ? "only claim" : "strongest claim";
}

std::string ownersPrefix(const Row& owner, const Row& modules)
{
    for (const Row& module : modules) {
        if (module["module"] == owner)
            return module["prefixes"].front();
    }
    return {};
}

Row equalClaimsWarning(const std::vector<std::string>& names)
{
    return {{"code", "equal-claims"},
            {"text", names[0] + " and " + names[1] + " claim this path equally strongly. " +
                         names[0] +
                         " gets it because it is asked first. Use a path that holds "
                         "the prefix of one driver only."}};
}

Row warningsOf(const Row& device, const Row& modules)
{
    Row warnings = Row::array();
    const bool isOwned = !device["owner"].is_null();
    const std::vector<std::string> equals = modulesClaiming(modules, device["claim"]);
    if (isOwned && equals.size() > 1)
        warnings.push_back(equalClaimsWarning(equals));
    const command::NamedDevice named{device["name"],
                                     isOwned ? device["owner"].get<std::string>() : std::string(),
                                     ownersPrefix(device["owner"], modules), device["partition"],
                                     isOwned ? device["disk"].get<std::string>() : std::string()};
    for (const command::Warning& warning : namingWarnings(named))
        warnings.push_back({{"code", warning.code}, {"text", warning.text}});
    return warnings;
}

} // namespace

namespace command {

Row explanation(CDmpClaimManager& manager,
                const std::vector<std::unique_ptr<CDmpDeviceClaimBase>>& modules,
                const std::string& path)
{
    Row answers = Row::array();
    for (const auto& module : modules)
        answers.push_back(moduleAnswer(*module, path));
    Row row = deviceRow(manager, path);
    row["rule"] = winningRule(row, answers);
    row["modules"] = answers;
    row["warnings"] = warningsOf(row, answers);
    return row;
}

} // namespace command
