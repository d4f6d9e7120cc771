// Other processes that reuse the numbers of tools, the first process of a container, and a /proc of
// another namespace. Each test runs in namespaces of its own.
#include "interrupt/end_tools.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <linux/sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/command/interrupt/pidfd_kernel.h"
#include "tests/command/interrupt/shell_tool.h"
#include "tests/support/namespaces.h"
#include "tests/support/temporary_folder.h"

namespace {

/// A process with a chosen number that leads a session. It runs as long as its child in that
/// session. The main thread starts it.
class UnrelatedProcess {
public:
    explicit UnrelatedProcess(pid_t wanted)
    {
        clone_args arguments{};
        arguments.exit_signal = SIGCHLD;
        arguments.set_tid = reinterpret_cast<std::uintptr_t>(&wanted);
        arguments.set_tid_size = 1;
        m_id = static_cast<pid_t>(realSyscall(SYS_clone3, &arguments, sizeof arguments));
        if (m_id == 0) {
            setsid();
            if (realSyscall(SYS_clone, SIGCHLD, 0, 0, 0, 0) != 0)
                _exit(waitpid(-1, nullptr, 0) > 0 ? 0 : 1);
            for (;;)
                pause();
        }
        EXPECT_EQ(m_id, wanted) << "the number is not free";
        while (m_id > 0 && getsid(m_id) != m_id)
            std::this_thread::yield();
    }
    UnrelatedProcess(const UnrelatedProcess&) = delete;
    UnrelatedProcess& operator=(const UnrelatedProcess&) = delete;
    ~UnrelatedProcess() = default; // ends with its namespace

    bool isRunning() const { return waitpid(m_id, nullptr, WNOHANG) == 0; }

private:
    pid_t m_id = -1;
};

/// Each test runs as the first process of a process namespace, on kernels with and without signals
/// to groups by pidfd.
class EndToolsAttack : public testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        if (!Namespaces::arePermitted())
            endWithoutNamespaces();
    }

    void inNamespaces(Namespaces::Proc proc, const std::function<void()>& test)
    {
        m_kernel.signalsGroups = GetParam();
        Namespaces::expectIn(proc, [&] {
            pidfdKernel = &m_kernel;
            test();
        });
    }

    bool endTools()
    {
        stop.request();
        return command::endTools(stop);
    }

    /// Calls `attack` once, just before the pidfd of `victim` is opened.
    void attackBeforeOpening(pid_t victim, const std::function<void()>& attack)
    {
        m_kernel.beforeOpen = [this, victim, attack](pid_t id) {
            if (id == victim && !m_hasAttacked) {
                m_hasAttacked = true;
                attack();
            }
        };
    }

    bool hasAttacked() const { return m_hasAttacked; }

    command::StopRequest stop;

private:
    PidfdKernel m_kernel;
    bool m_hasAttacked = false;
};

INSTANTIATE_TEST_SUITE_P(Kernel, EndToolsAttack, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& test) {
                             return test.param ? "OfToday" : "Before69";
                         });

/// Ignores SIGTERM, so that endTools goes on for half a second after other tools have ended.
constexpr char stubborn[] = "trap '' TERM; ready; while :; do sleep 100; done";

TEST_P(EndToolsAttack, AnUnrelatedProcessThatGetsTheNumberOfAToolThatHasEndedIsLeftAlone)
{
    inNamespaces(Namespaces::Proc::ofItsProcesses, [&] {
        const ShellTool other(stop, stubborn);
        const ShellTool tool(stop, "ready; exec sleep 100");
        std::thread ending([&] { EXPECT_TRUE(endTools()); });
        tool.status();
        const UnrelatedProcess unrelated(tool.id());
        ending.join();
        EXPECT_TRUE(other.isSessionGone());
        EXPECT_TRUE(unrelated.isRunning());
    });
}

TEST_P(EndToolsAttack, AnUnrelatedProcessThatGetsTheNumberOfAToolBeforeItIsHeldIsLeftAlone)
{
    inNamespaces(Namespaces::Proc::ofItsProcesses, [&] {
        const ShellTool other(stop, stubborn);
        const ShellTool tool(stop, "ready; exec sleep 100");
        std::optional<UnrelatedProcess> unrelated;
        attackBeforeOpening(tool.id(), [&] {
            kill(tool.id(), SIGKILL);
            tool.status();
            unrelated.emplace(tool.id());
        });
        endTools();
        EXPECT_TRUE(hasAttacked());
        EXPECT_TRUE(other.isSessionGone());
        EXPECT_TRUE(unrelated->isRunning());
    });
}

TEST_P(EndToolsAttack, AnUnrelatedProcessThatGetsTheNumberOfAToolsChildBeforeItIsHeldIsLeftAlone)
{
    inNamespaces(Namespaces::Proc::ofItsProcesses, [&] {
        const TemporaryFolder folder;
        const std::string file = folder.file("id");
        const ShellTool tool(stop, "trap '' TERM; sleep 100 & echo $! >" + file +
                                       "; ready; wait; while :; do sleep 100; done");
        const pid_t child = std::stoi(textOf(file));
        std::optional<UnrelatedProcess> unrelated;
        attackBeforeOpening(child, [&] {
            kill(child, SIGKILL);
            while (kill(child, 0) == 0)
                std::this_thread::yield();
            unrelated.emplace(child);
        });
        EXPECT_TRUE(endTools());
        EXPECT_TRUE(hasAttacked());
        EXPECT_TRUE(tool.isSessionGone());
        EXPECT_TRUE(unrelated->isRunning());
    });
}

TEST_P(EndToolsAttack, WhatTheFirstProcessInheritsIsLeftAlone)
{
    inNamespaces(Namespaces::Proc::ofItsProcesses, [&] {
        const pid_t daemon = inheritedSleeper("setsid");
        const pid_t sleeper = inheritedSleeper("");
        const ShellTool tool(stop, stubborn);
        EXPECT_EQ(getpid(), 1);
        EXPECT_TRUE(endTools());
        EXPECT_TRUE(tool.isSessionGone());
        EXPECT_EQ(waitpid(daemon, nullptr, WNOHANG), 0);
        EXPECT_EQ(waitpid(sleeper, nullptr, WNOHANG), 0);
    });
}

/// The children of this process's threads, as /proc numbers them.
std::vector<pid_t> listedChildren()
{
    std::vector<pid_t> children;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "children");
        for (pid_t child = 0; file >> child;)
            children.push_back(child);
    }
    return children;
}

/// Behaves the same on all kernels.
class EndToolsElsewhere : public EndToolsAttack {};

INSTANTIATE_TEST_SUITE_P(Kernel, EndToolsElsewhere, testing::Values(true));

TEST_P(EndToolsElsewhere, AnUnrelatedProcessThatHasTheNumberWhichTheHostsProcShowsIsLeftAlone)
{
    inNamespaces(Namespaces::Proc::ofTheHost, [&] {
        const ShellTool tool(stop, "ready; while :; do sleep 0.01; done");
        const std::vector<pid_t> children = listedChildren();
        ASSERT_EQ(children.size(), 1U);
        ASSERT_NE(children.front(), tool.id());
        const UnrelatedProcess unrelated(children.front());
        EXPECT_FALSE(endTools());
        EXPECT_FALSE(tool.isReaped());
        EXPECT_TRUE(unrelated.isRunning());
    });
}

TEST_P(EndToolsElsewhere, WithoutProcNoProcessIsEnded)
{
    inNamespaces(Namespaces::Proc::missing, [&] {
        const ShellTool tool(stop, "ready; exec sleep 100");
        EXPECT_FALSE(endTools());
        EXPECT_FALSE(tool.isReaped());
    });
}

} // namespace
