// Processes that end, or whose numbers are reused, between two looks at them.
#include "interrupt/tool_processes.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include <unistd.h>

#include "tests/command/interrupt/pidfd_kernel.h"
#include "tests/command/interrupt/shell_tool.h"
#include "tests/support/temporary_folder.h"

namespace {

/// A tool with a child that sleeps.
struct ToolWithChild {
    explicit ToolWithChild(command::StopRequest& stop)
        : tool(stop, "sleep 100 & echo $! >" + file + "; ready; wait; exec sleep 100")
    {}

    TemporaryFolder folder;
    std::string file = folder.file("id");
    ShellTool tool;
    pid_t child = std::stoi(textOf(file));
};

class ToolProcessesTest : public testing::Test {
protected:
    ToolProcessesTest() { pidfdKernel = &m_kernel; }
    ~ToolProcessesTest() override { pidfdKernel = nullptr; }

    static void end(const ShellTool& tool)
    {
        kill(-tool.id(), SIGKILL);
        tool.status();
    }

    command::StopRequest m_stop;
    PidfdKernel m_kernel;
    command::ToolProcesses m_tools;
};

TEST_F(ToolProcessesTest, AToolThatEndsBeforeItIsHeldIsNotMissed)
{
    const ShellTool tool(m_stop, "ready; exec sleep 100");
    m_kernel.beforeOpen = [&](pid_t id) {
        if (id == tool.id())
            end(tool);
    };
    m_tools.update();
    EXPECT_TRUE(tool.isReaped());
    EXPECT_FALSE(m_tools.areAlive());
}

TEST_F(ToolProcessesTest, AToolsChildThatEndsBeforeItIsHeldIsNotMissed)
{
    const ToolWithChild parent(m_stop);
    bool hasEnded = false;
    m_kernel.beforeOpen = [&](pid_t id) {
        if (id != parent.child)
            return;
        kill(parent.child, SIGKILL);
        while (kill(parent.child, 0) == 0)
            std::this_thread::yield();
        hasEnded = true;
    };
    m_tools.update();
    EXPECT_TRUE(hasEnded);
    EXPECT_TRUE(m_tools.areAlive());
    end(parent.tool);
    EXPECT_FALSE(m_tools.areAlive());
}

TEST_F(ToolProcessesTest, AProcessThatMayHaveTheNumberOfOneThatWasHeldIsLookedAt)
{
    const ToolWithChild parent(m_stop);
    int looks = 0; // at the child
    m_kernel.beforeOpen = [&](pid_t id) { looks += id == parent.child ? 1 : 0; };
    m_tools.update();
    m_tools.update();
    EXPECT_EQ(looks, 1);
    m_kernel.probeError = [](int /*descriptor*/) { return ESRCH; };
    m_tools.update();
    EXPECT_EQ(looks, 2);
    end(parent.tool);
}

} // namespace
