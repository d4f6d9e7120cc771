#include "command/retry_policy.h"

#include <gmock/gmock.h>

#include <variant>

#include "command/options.h"
#include "command/tool_commands.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "tests/support/scripted_tools.h"

namespace {

using command::RetryPolicy;
using testing::ContainsRegex;
using testing::HasSubstr;

/// Looks the active path of /dev/sdc up, which is never found. The number of commands is that of
/// the script.
void lookUp(bool refresh)
{
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, "/dev/sdc");
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(owner->getActivePath("/dev/sdc", !refresh), "/dev/sdc");
}

std::vector<std::string> sleeps(const ScriptedTools& tools)
{
    std::vector<std::string> found;
    for (const std::string& event : tools.events) {
        if (event.rfind("sleep ", 0) == 0)
            found.push_back(event);
    }
    return found;
}

/// As many sleeps as there are attempts.
std::vector<std::string> pauses(const RetryPolicy& policy)
{
    return std::vector<std::string>(static_cast<std::size_t>(policy.attempts),
                                    "sleep " + std::to_string(policy.pause.count()));
}

TEST(RetryPolicy, TheLibraryWaitsAsItSays)
{
    const RetryPolicy& policy = command::retryPolicy(false);
    ScriptedTools tools;
    for (int attempt = 0; attempt < policy.attempts; ++attempt)
        tools.answer(command::nodeQuery("sdc"), 3).answer(command::rescan({"sdc"}), 0);
    lookUp(false);
    EXPECT_EQ(sleeps(tools), pauses(policy));
}

TEST(RetryPolicy, TheLibraryRefreshesAsItSays)
{
    const RetryPolicy& policy = command::retryPolicy(true);
    ScriptedTools tools;
    tools.answer(command::nodeQuery("sdc"), 3);
    for (int attempt = 0; attempt < policy.attempts; ++attempt)
        tools.answer(command::rescan({}), 0).answer(command::nodeQuery("sdc"), 3);
    lookUp(true);
    EXPECT_EQ(sleeps(tools), pauses(policy));
}

TEST(RetryPolicy, TheHelpTellsTheSame)
{
    const std::string help =
        std::get<command::Information>(command::parseOptions({"active", "--help"}));
    const RetryPolicy& waiting = command::retryPolicy(false);
    EXPECT_THAT(help, HasSubstr(std::to_string(waiting.pause.count()) + " seconds, up to " +
                                std::to_string(waiting.attempts) + " times"));
    const RetryPolicy& refreshing = command::retryPolicy(true);
    EXPECT_THAT(help,
                ContainsRegex("up to " + std::to_string(refreshing.attempts) + " times, with " +
                              std::to_string(refreshing.pause.count()) + "[ \n]+seconds between"));
}

} // namespace
