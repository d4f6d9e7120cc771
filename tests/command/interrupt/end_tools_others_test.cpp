// Processes that are no tools: they run on.
#include "ended_tools.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

INSTANTIATE_TEST_SUITE_P(Kernel, EndTools, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& test) {
                             return test.param ? "OfToday" : "Before69";
                         });

/// A child of the main thread that leads a session and waits.
class OtherChild {
public:
    OtherChild() : m_id(fork())
    {
        if (m_id == 0) {
            setsid();
            for (;;)
                pause();
        }
        while (getsid(m_id) != m_id)
            std::this_thread::yield();
    }
    OtherChild(const OtherChild&) = delete;
    OtherChild& operator=(const OtherChild&) = delete;
    ~OtherChild()
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }

    bool isRunning() const { return waitpid(m_id, nullptr, WNOHANG) == 0; }

private:
    pid_t m_id;
};

TEST_P(EndTools, ChildrenOfTheMainThreadAreNoTools)
{
    const OtherChild child;
    const ShellTool tool(stop, "ready; sleep 100");
    endTools();
    EXPECT_TRUE(areGone);
    EXPECT_TRUE(tool.isSessionGone());
    EXPECT_TRUE(child.isRunning());
}

TEST_P(EndTools, ProcessesThatOthersStartedAreNoTools)
{
    Pipe pipe = makePipe();
    const pid_t child = fork();
    if (child == 0) {
        const OtherChild grandchild;
        if (write(pipe.writer.number(), "", 1) == 1)
            pause();
        _exit(1);
    }
    char ready = 0;
    ASSERT_EQ(read(pipe.reader.number(), &ready, 1), 1);
    const ShellTool tool(stop, "ready; sleep 100");
    endTools();
    EXPECT_TRUE(areGone);
    const std::string children =
        textOf("/proc/" + std::to_string(child) + "/task/" + std::to_string(child) + "/children");
    ASSERT_FALSE(children.empty());
    EXPECT_FALSE(isSessionGone(std::stoi(children)));
    kill(std::stoi(children), SIGKILL);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

/// Ends a child. Returns whether it was running.
bool endSleeper(pid_t id)
{
    const bool wasRunning = waitpid(id, nullptr, WNOHANG) == 0;
    kill(id, SIGKILL);
    waitpid(id, nullptr, 0);
    return wasRunning;
}

TEST_P(EndTools, ADaemonThatASubreaperInheritsIsNoTool)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t daemon = inheritedSleeper("setsid");
    const ShellTool tool(stop, "trap '' TERM; ready; while :; do sleep 100; done");
    endTools();
    EXPECT_TRUE(tool.isSessionGone());
    EXPECT_TRUE(endSleeper(daemon));
}

TEST_P(EndTools, WhatAnEarlierToolLeftRunningIsNoTool)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t sleeper = inheritedSleeper("");
    const ShellTool tool(stop, "trap '' TERM; ready; while :; do sleep 100; done");
    endTools();
    EXPECT_TRUE(tool.isSessionGone());
    EXPECT_TRUE(endSleeper(sleeper));
}

} // namespace
