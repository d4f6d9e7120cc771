#include "active/dry_run.h"

#include "kovm/command_lines.h"
#include "names/tool_name.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

namespace command {

namespace {

using kovm::RetryPolicy;

constexpr char placeholder[] = "NODE";

struct Plan {
    std::optional<CommandLine> command;
    std::string when;
};

constexpr char whenFound[] = "when the node was found";

std::string attempts(const RetryPolicy& policy)
{
    return policy.attempts == 1
               ? "once"
               : "up to " + std::to_string(policy.attempts) + " times until it succeeds";
}

std::string pause(const RetryPolicy& policy)
{
    return std::to_string(policy.pause.count()) + " seconds after each failure";
}

std::vector<Plan> waitingPlan(const std::string& disk, const LookupRules& rules)
{
    const RetryPolicy policy = rules.policy();
    std::vector<Plan> plan{{CommandLine{kovm::nodeQuery(disk)}, "first; " + attempts(policy)}};
    if (policy.attempts > 1)
        plan.push_back(
            {CommandLine{kovm::rescan({disk})},
             pause(policy) + " of the line above" + (rules.tries ? " but the last" : "")});
    plan.push_back({CommandLine{kovm::pathQuery(placeholder)}, whenFound});
    return plan;
}

std::vector<Plan> refreshingPlan(const std::string& disk, const LookupRules& rules)
{
    const RetryPolicy policy = rules.policy();
    const std::string pauses = policy.attempts == 1 ? "" : ", " + pause(policy);
    return {{CommandLine{kovm::nodeQuery(disk)}, "first"},
            {CommandLine{kovm::removal(placeholder)}, "when the line above succeeded"},
            {CommandLine{kovm::rescan({})}, "before each attempt of the line below"},
            {CommandLine{kovm::nodeQuery(disk)}, attempts(policy) + pauses},
            {CommandLine{kovm::pathQuery(placeholder)}, whenFound}};
}

/// The commands for a path. `owner` is the module that claims it, null when none does.
std::vector<Plan> planFor(const std::string& path, CDmpDeviceClaimBase* owner,
                          const LookupRules& rules)
{
    if (owner == nullptr || !driverOf(owner)->asksTools)
        return {{{}, "never: only a native path is looked up"}};
    if (const char* reason = whyNotAsked(path))
        return {{{}, std::string("never: ") + reason}};
    unsigned int partnum = 0;
    const std::string disk =
        owner->removeDevPrefix(rules.asGiven ? path : owner->removePartitionSuffix(path, partnum));
    std::vector<Plan> plan = rules.refresh ? refreshingPlan(disk, rules) : waitingPlan(disk, rules);
    if (!CKoDMPSupport().isKoDMPInstalled()) {
        for (Plan& step : plan)
            step.when = "if the tools were installed: " + step.when;
    }
    return plan;
}

} // namespace

std::vector<PlannedCommand> dryRun(CDmpClaimManager& manager, const std::string& path,
                                   const LookupRules& rules)
{
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, path);
    std::vector<PlannedCommand> commands;
    for (const Plan& step : planFor(path, owner, rules))
        commands.push_back({path, driverOf(owner), step.command, step.when});
    return commands;
}

const Columns<PlannedCommand>& plannedColumns()
{
    using Command = const PlannedCommand&;
    static const Columns<PlannedCommand> columns{
        {{"NAME", Kind::text, "the path as it was given"},
         [](Command command) -> Field { return command.name; }},
        {{"OWNER", Kind::text, "the driver that owns it"},
         [](Command command) { return ownerField(command.owner); }},
        {{"COMMAND", Kind::text, "a command that would run"},
         [](Command command) { return optionalField(command.command); }},
        {{"WHEN", Kind::text, "under which condition it would run"},
         [](Command command) -> Field { return command.when; }},
    };
    return columns;
}

} // namespace command
