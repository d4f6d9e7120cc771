#include "dry_run.h"

#include "device_row.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tool_commands.h"

namespace {

using command::nodeQuery;
using command::pathQuery;
using command::removal;
using command::rescan;
using command::Row;

constexpr char placeholder[] = "NODE";

struct Step {
    std::string command;
    const char* when;
};

constexpr char finding[] = "when the node was found";

std::vector<Step> waitingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first; up to 4 times until it succeeds"},
            {rescan({disk}), "5 seconds after each failure of the line above"},
            {pathQuery(placeholder), finding}};
}

std::vector<Step> refreshingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first"},
            {removal(placeholder), "when the line above succeeded"},
            {rescan({}), "before each attempt of the line below"},
            {nodeQuery(disk), "up to 4 times until it succeeds, 10 seconds after each failure"},
            {pathQuery(placeholder), finding}};
}

} // namespace

namespace command {

std::vector<Row> dryRun(CDmpClaimManager& manager, const std::string& path, bool refresh)
{
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, path);
    const Row device{{"name", path}, {"owner", ownerField(owner)}};
    std::vector<Row> rows;
    const auto add = [&](const Row& commandLine, const std::string& when) {
        rows.push_back(device);
        rows.back()["command"] = commandLine;
        rows.back()["when"] = when;
    };
    if (dynamic_cast<const CNativePathClaim*>(owner) == nullptr) {
        add(nullptr, "never: only a native path is looked up");
        return rows;
    }
    const std::string disk = owner->removeDevPrefix(path);
    const std::string condition =
        CKoDMPSupport().isKoDMPInstalled() ? "" : "if the tools were installed: ";
    for (const Step& step : refresh ? refreshingSteps(disk) : waitingSteps(disk))
        add(step.command, condition + step.when);
    return rows;
}

} // namespace command
