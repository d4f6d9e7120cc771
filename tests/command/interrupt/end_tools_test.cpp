#include "ended_tools.h"

#include <utility>

#include <sys/stat.h>

#include "interrupt/held_process.h"
#include "interrupt/tool_processes.h"
#include "pdk/include/czeexecpipe.h"
#include "tests/support/descriptor.h"
#include "tests/support/temporary_folder.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int killed = koze_pdk_4_4::CZeExecPipeBase::killedBySignal + SIGKILL;

INSTANTIATE_TEST_SUITE_P(Kernel, EndTools, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& test) {
                             return test.param ? "OfToday" : "Before69";
                         });

TEST_P(EndTools, WithoutToolsThereIsNothingToDo)
{
    endTools();
    EXPECT_LT(passed, std::chrono::milliseconds(400));
    EXPECT_TRUE(areGone);
}

TEST_P(EndTools, ToolsAreAskedToEnd)
{
    const ShellTool one(stop, "sleep 100 & trap 'exit 3' TERM; ready; wait");
    const ShellTool other(stop, "sleep 100 & trap 'exit 4' TERM; ready; wait");
    endTools();
    EXPECT_TRUE(areGone);
    ASSERT_TRUE(one.isSessionGone());
    ASSERT_TRUE(other.isSessionGone());
    EXPECT_EQ(one.status(), 3);
    EXPECT_EQ(other.status(), 4);
}

TEST_P(EndTools, WhatAToolStartedIsAskedToEndToo)
{
    const ShellTool tool(stop, "sleep 100 & trap '' TERM; ready; wait $!; exit 3");
    endTools();
    ASSERT_TRUE(tool.isSessionGone());
    EXPECT_EQ(tool.status(), 3);
}

TEST_P(EndTools, WhatAToolStartedInAnotherGroupOfItsSessionEndsToo)
{
    const ShellTool tool(stop, "perl -e 'setpgrp; sleep 100' & trap '' TERM; ready; wait; exit 3");
    endTools();
    ASSERT_TRUE(tool.isSessionGone());
    EXPECT_EQ(tool.status(), 3);
}

TEST_P(EndTools, AToolIsAskedOnce)
{
    const ShellTool tool(
        stop, "trap 'asked=x$asked' TERM; ready; while [ -z \"$asked\" ]; do sleep 0.01; done; "
              "sleep 0.1; exit ${#asked}");
    endTools();
    ASSERT_TRUE(tool.isSessionGone());
    EXPECT_EQ(tool.status(), 1);
}

TEST_P(EndTools, ANameMayLookLikeTheNextFields)
{
    const TemporaryFolder folder;
    const std::string name = folder.file("a) Z 1 1 1");
    const std::string id = folder.file("id");
    std::filesystem::copy("/bin/sleep", name);
    const ShellTool tool(stop, "'" + name + "' 100 & echo $! >" + id + "; ready; wait");
    const std::string sleeper = "/proc/" + std::to_string(std::stoi(textOf(id)));
    while (textOf(sleeper + "/comm").find(')') == std::string::npos)
        std::this_thread::yield();
    endTools();
    EXPECT_TRUE(areGone);
    EXPECT_TRUE(textOf(sleeper + "/cmdline").empty());
}

TEST_P(EndTools, AToolThatDoesNotListenIsKilled)
{
    const ShellTool tool(stop, "trap '' TERM; ready; while :; do sleep 100; done");
    endTools();
    ASSERT_TRUE(tool.isSessionGone());
    EXPECT_GE(passed, std::chrono::milliseconds(500));
    EXPECT_EQ(tool.status(), killed);
}

TEST_P(EndTools, WhatAToolLeavesInItsSessionIsKilled)
{
    const ShellTool tool(stop, "(trap '' TERM; ready; exec sleep 100) & wait");
    endTools();
    EXPECT_TRUE(areGone);
    EXPECT_TRUE(tool.isSessionGone());
}

/// On kernels that signal groups by pidfd.
class EndToolsInGroups : public EndTools {
protected:
    void SetUp() override
    {
        EndTools::SetUp();
        if (!command::HeldProcess(getpgrp()).groupHasMembers())
            GTEST_SKIP() << "this kernel is older than 6.9";
    }
};

INSTANTIATE_TEST_SUITE_P(Kernel, EndToolsInGroups, testing::Values(true));

TEST_P(EndToolsInGroups, WhatAToolStartsAtItsEndIsKilled)
{
    const ShellTool tool(stop, "trap '(trap \"\" TERM; exec sleep 100) & exit 3' TERM; ready; "
                               "while :; do sleep 0.01; done");
    endTools();
    EXPECT_TRUE(areGone);
    EXPECT_GE(passed, std::chrono::milliseconds(500));
    EXPECT_TRUE(tool.isSessionGone());
}

/// The tool starts a sleeper when it may, which is before the first `signal` is sent.
TEST_P(EndTools, WhatAToolWouldStartBeforeItsSignalIsNotMissed)
{
    for (const int signal : {SIGTERM, SIGKILL}) {
        command::StopRequest request;
        const TemporaryFolder folder;
        const std::string fifo = folder.file("go");
        ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
        const Descriptor go = openFile(fifo.c_str(), O_RDWR);
        bool isLetGo = false;
        kernel.beforeSend = [&](int sent) {
            if (sent != signal || std::exchange(isLetGo, true))
                return;
            EXPECT_EQ(write(go.number(), "\n", 1), 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        };
        const ShellTool tool(request, std::string(signal == SIGKILL ? "trap '' TERM; " : "") +
                                          "exec 3<>" + fifo +
                                          "; ready; read go <&3; sleep 100 & wait");
        request.request();
        EXPECT_TRUE(command::endTools(request));
        EXPECT_TRUE(isLetGo);
        EXPECT_TRUE(tool.isSessionGone());
    }
}

/// Whether the process comes to a state, such as T for stopped, before ten seconds have passed.
bool comesTo(pid_t id, char state)
{
    const Clock::time_point end = Clock::now() + std::chrono::seconds(10);
    const std::string wanted = std::string(") ") + state + ' ';
    bool isThere = false;
    while (!isThere && Clock::now() < end)
        isThere = textOf("/proc/" + std::to_string(id) + "/stat").find(wanted) != std::string::npos;
    return isThere;
}

/// This happens when memory is exhausted in between.
TEST_P(EndTools, AToolThatWasOnlyStoppedRunsOn)
{
    const ShellTool tool(stop, "ready; exec sleep 100");
    {
        command::ToolProcesses tools;
        tools.update();
        tools.askToEnd();
        EXPECT_TRUE(comesTo(tool.id(), 'T'));
    }
    EXPECT_TRUE(comesTo(tool.id(), 'S'));
}

TEST_P(EndTools, AStoppedToolEndsToo)
{
    const ShellTool tool(stop, "trap 'exit 3' TERM; ready; while :; do sleep 0.01; done");
    kill(-tool.id(), SIGSTOP);
    endTools();
    ASSERT_TRUE(tool.isSessionGone());
    EXPECT_EQ(tool.status(), 3);
}

TEST_P(EndTools, AZombieThatNobodyReapsIsNotWaitedFor)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const ShellTool tool(stop, "(exit 0) & ready; exec sleep 100");
    endTools();
    EXPECT_LT(passed, std::chrono::milliseconds(1500));
}

/// These take the whole two seconds, on all kernels alike.
class EndToolsInVain : public EndTools {};

INSTANTIATE_TEST_SUITE_P(Kernel, EndToolsInVain, testing::Values(true));

TEST_P(EndToolsInVain, AProcessThatCannotBeHeldIsSpokenOf)
{
    kernel.pidfdsLeft = 1;
    const ShellTool tool(stop, "sleep 100 & ready; wait");
    endTools();
    EXPECT_FALSE(areGone);
    EXPECT_GT(kernel.denials, 0);
    EXPECT_FALSE(tool.isSessionGone());
    kill(-tool.id(), SIGKILL);
}

TEST_P(EndToolsInVain, AToolThatNothingEndsIsGivenUp)
{
    stop.beginTool();
    endTools();
    EXPECT_GE(passed, std::chrono::seconds(2));
    EXPECT_FALSE(areGone);
}

TEST_P(EndToolsInVain, WithoutPidfdsNoProcessIsEnded)
{
    kernel.hasPidfds = false;
    const ShellTool tool(stop, "ready; sleep 100");
    endTools();
    EXPECT_FALSE(areGone);
    EXPECT_FALSE(tool.isSessionGone());
    EXPECT_GT(kernel.denials, 0);
}

} // namespace
