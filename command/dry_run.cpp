#include "dry_run.h"

#include "device_row.h"
#include "drivers.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "retry_policy.h"
#include "tool_commands.h"
#include "tool_name.h"

namespace {

using command::nodeQuery;
using command::pathQuery;
using command::refreshingPolicy;
using command::removal;
using command::rescan;
using command::RetryPolicy;
using command::Row;
using command::waitingPolicy;

constexpr char placeholder[] = "NODE";

struct Step {
    std::string command;
    std::string when;
};

constexpr char finding[] = "when the node was found";

std::string attempts(const RetryPolicy& policy)
{
    return "up to " + std::to_string(policy.attempts) + " times until it succeeds";
}

std::string pause(const RetryPolicy& policy)
{
    return std::to_string(policy.pause.count()) + " seconds after each failure";
}

std::vector<Step> waitingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first; " + attempts(waitingPolicy)},
            {rescan({disk}), pause(waitingPolicy) + " of the line above"},
            {pathQuery(placeholder), finding}};
}

std::vector<Step> refreshingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first"},
            {removal(placeholder), "when the line above succeeded"},
            {rescan({}), "before each attempt of the line below"},
            {nodeQuery(disk), attempts(refreshingPolicy) + ", " + pause(refreshingPolicy)},
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
    if (!asksTools(owner)) {
        add(nullptr, "never: only a native path is looked up");
        return rows;
    }
    if (const char* reason = whyNotAsked(path)) {
        add(nullptr, std::string("never: ") + reason);
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
