#include "kovm/retry_policy.h"

#include <gmock/gmock.h>

#include "kovm/command_lines.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "tests/support/scripted_tools.h"

namespace {

using kovm::RetryPolicy;

/// Looks up the active path of /dev/sdc, which is never found. The script fails the test when the
/// number of commands differs.
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

/// One sleep for each attempt.
std::vector<std::string> pauses(const RetryPolicy& policy)
{
    return std::vector<std::string>(static_cast<std::size_t>(policy.attempts),
                                    "sleep " + std::to_string(policy.pause.count()));
}

TEST(RetryPolicy, TheLibraryWaitsAsItSays)
{
    const RetryPolicy& policy = kovm::retryPolicy(false);
    ScriptedTools tools;
    for (int attempt = 0; attempt < policy.attempts; ++attempt)
        tools.answer(kovm::nodeQuery("sdc"), 3).answer(kovm::rescan({"sdc"}), 0);
    lookUp(false);
    EXPECT_EQ(sleeps(tools), pauses(policy));
}

TEST(RetryPolicy, TheLibraryRefreshesAsItSays)
{
    const RetryPolicy& policy = kovm::retryPolicy(true);
    ScriptedTools tools;
    tools.answer(kovm::nodeQuery("sdc"), 3);
    for (int attempt = 0; attempt < policy.attempts; ++attempt)
        tools.answer(kovm::rescan({}), 0).answer(kovm::nodeQuery("sdc"), 3);
    lookUp(true);
    EXPECT_EQ(sleeps(tools), pauses(policy));
}

} // namespace
