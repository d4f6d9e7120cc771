#include "command/end_tools.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <thread>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

/// What /proc/self names, instead of this process.
std::optional<std::string> procSelf;

} // namespace

/// Takes the place of the C library's.
extern "C" ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept
{
    if (!procSelf || path != std::string("/proc/self"))
        return syscall(SYS_readlink, path, buffer, size);
    if (procSelf->empty()) {
        errno = ENOENT;
        return -1;
    }
    return static_cast<ssize_t>(procSelf->copy(buffer, size));
}

namespace {

using Clock = std::chrono::steady_clock;

/// Whether nobody of the group is left. Zombies, which others have to reap, do not count.
bool isGone(pid_t wanted)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string id;
        std::string name;
        std::string state;
        pid_t parent = 0;
        pid_t group = 0;
        if (file >> id >> name >> state >> parent >> group && group == wanted && state != "Z")
            return false;
    }
    return true;
}

/// A shell in a process group of its own, as the runner starts tools, reaped by a thread. It has
/// said that it is ready when the constructor returns.
class Tool {
public:
    Tool(command::StopRequest& stop, const std::string& script)
    {
        stop.beginTool();
        int ends[2];
        if (pipe(ends) != 0)
            abort();
        m_id = fork();
        if (m_id == 0) {
            setpgid(0, 0);
            dup2(ends[1], STDOUT_FILENO);
            execl("/bin/sh", "sh", "-c", script.c_str(), nullptr);
            _exit(127);
        }
        close(ends[1]);
        char ready = 0;
        EXPECT_EQ(read(ends[0], &ready, 1), 1);
        close(ends[0]);
        m_reaper = std::thread([this, &stop] {
            waitpid(m_id, &m_status, 0);
            stop.endTool();
        });
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;
    ~Tool()
    {
        kill(-m_id, SIGKILL);
        join();
    }

    void join()
    {
        if (m_reaper.joinable())
            m_reaper.join();
    }

    bool groupIsGone() const { return isGone(m_id); }

    int status() const { return m_status; }
    pid_t id() const { return m_id; }

private:
    pid_t m_id = -1;
    int m_status = -1;
    std::thread m_reaper;
};

class EndTools : public testing::Test {
protected:
    void endTools()
    {
        stop.request();
        const Clock::time_point begin = Clock::now();
        areGone = command::endTools(stop, others);
        passed = Clock::now() - begin;
    }

    command::StopRequest stop;
    std::set<pid_t> others;
    Clock::duration passed{};
    bool areGone = false;
};

TEST_F(EndTools, WithoutToolsThereIsNothingToDo)
{
    endTools();
    EXPECT_LT(passed, std::chrono::milliseconds(400));
    EXPECT_TRUE(areGone);
}

TEST_F(EndTools, ToolsAreAskedToEnd)
{
    Tool one(stop, "trap 'exit 3' TERM; echo; sleep 100 & wait");
    Tool other(stop, "trap 'exit 4' TERM; echo; sleep 100 & wait");
    endTools();
    ASSERT_TRUE(one.groupIsGone());
    ASSERT_TRUE(other.groupIsGone());
    one.join();
    other.join();
    EXPECT_EQ(WEXITSTATUS(one.status()), 3);
    EXPECT_EQ(WEXITSTATUS(other.status()), 4);
}

TEST_F(EndTools, WhatAToolStartedIsAskedToEndToo)
{
    Tool tool(stop, "sleep 100 & trap '' TERM; echo; wait $!; exit 3");
    endTools();
    ASSERT_TRUE(tool.groupIsGone());
    tool.join();
    EXPECT_EQ(WEXITSTATUS(tool.status()), 3);
}

TEST_F(EndTools, AToolIsAskedOnce)
{
    Tool tool(stop,
              "trap 'asked=x$asked' TERM; echo; while [ -z \"$asked\" ]; do sleep 0.01; done; "
              "sleep 0.1; exit ${#asked}");
    endTools();
    ASSERT_TRUE(tool.groupIsGone());
    tool.join();
    EXPECT_EQ(WEXITSTATUS(tool.status()), 1);
}

TEST_F(EndTools, AToolsNameMayLookLikeTheNextFields)
{
    const TemporaryFolder folder;
    const std::string name = folder.file("a) Z 1 1");
    std::filesystem::copy("/bin/sh", name);
    Tool tool(stop, "exec '" + name + "' -c 'echo; sleep 100; exit'");
    endTools();
    EXPECT_FALSE(stop.toolsRun());
}

TEST_F(EndTools, AToolThatDoesNotListenIsKilled)
{
    Tool tool(stop, "trap '' TERM; echo; while :; do sleep 100; done");
    endTools();
    ASSERT_TRUE(tool.groupIsGone());
    EXPECT_GE(passed, std::chrono::milliseconds(500));
    tool.join();
    EXPECT_EQ(WTERMSIG(tool.status()), SIGKILL);
}

TEST_F(EndTools, WhatAToolLeavesInItsGroupIsKilled)
{
    Tool tool(stop, "(trap '' TERM; echo; exec sleep 100) & wait");
    endTools();
    EXPECT_TRUE(tool.groupIsGone());
}

TEST_F(EndTools, AStoppedToolEndsToo)
{
    Tool tool(stop, "trap 'exit 3' TERM; echo; while :; do sleep 0.01; done");
    kill(-tool.id(), SIGSTOP);
    endTools();
    ASSERT_TRUE(tool.groupIsGone());
    tool.join();
    EXPECT_EQ(WEXITSTATUS(tool.status()), 3);
}

TEST_F(EndTools, ChildrenThatShareThisGroupAreNoTools)
{
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    Tool tool(stop, "echo; sleep 100");
    endTools();
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST_F(EndTools, ChildrenFromBeforeAreNoTools)
{
    command::StopRequest before;
    const Tool child(before, "echo; sleep 100");
    others = command::childProcesses();
    EXPECT_EQ(others.count(getpid()), 0U);
    const Tool tool(stop, "echo; sleep 100");
    endTools();
    EXPECT_TRUE(tool.groupIsGone());
    EXPECT_FALSE(child.groupIsGone());
}

TEST_F(EndTools, ProcessesThatOthersStartedAreNoTools)
{
    Pipe pipe = makePipe();
    const pid_t child = fork();
    if (child == 0) {
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            setpgid(0, 0);
            pause();
        }
        setpgid(grandchild, grandchild);
        if (write(pipe.writer.number(), &grandchild, sizeof grandchild) > 0)
            pause();
        _exit(1);
    }
    pid_t grandchild = -1;
    ASSERT_EQ(read(pipe.reader.number(), &grandchild, sizeof grandchild),
              static_cast<ssize_t>(sizeof grandchild));
    Tool tool(stop, "echo; sleep 100");
    endTools();
    EXPECT_FALSE(isGone(grandchild));
    kill(grandchild, SIGKILL);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST_F(EndTools, ADeadProcessThatNobodyLooksAfterIsNotWaitedFor)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    Tool tool(stop, "(exit 0) & echo; exec sleep 100");
    endTools();
    EXPECT_LT(passed, std::chrono::milliseconds(1500));
}

TEST_F(EndTools, AToolThatNothingEndsIsGivenUp)
{
    stop.beginTool();
    endTools();
    EXPECT_GE(passed, std::chrono::seconds(2));
    EXPECT_FALSE(areGone);
}

/// /proc is missing, or shows another process namespace, where other processes have the numbers.
class EndToolsWithoutProc : public EndTools, public testing::WithParamInterface<const char*> {
public:
    EndToolsWithoutProc() { procSelf = GetParam(); }
    EndToolsWithoutProc(const EndToolsWithoutProc&) = delete;
    EndToolsWithoutProc& operator=(const EndToolsWithoutProc&) = delete;
    ~EndToolsWithoutProc() override { procSelf.reset(); }
};

INSTANTIATE_TEST_SUITE_P(, EndToolsWithoutProc,
                         testing::Values("", "4194305")); // more than there can be

TEST_P(EndToolsWithoutProc, NobodyIsEnded)
{
    const Tool tool(stop, "echo; sleep 100");
    endTools();
    EXPECT_FALSE(areGone);
    EXPECT_FALSE(tool.groupIsGone());
    EXPECT_TRUE(command::childProcesses().empty());
}

TEST_P(EndToolsWithoutProc, WithoutToolsThereIsNothingToDo)
{
    endTools();
    EXPECT_LT(passed, std::chrono::milliseconds(400));
    EXPECT_TRUE(areGone);
}

} // namespace
