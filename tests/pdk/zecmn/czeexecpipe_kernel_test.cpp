// The runner on kernels that lack a system call, interrupt it or signal at its start.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <csignal>
#include <vector>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "closed_standard.h"
#include "exec_kernel.h"

namespace {

using koze_pdk_4_4::CZeExecPipeBase;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::StartsWith;

TEST_F(ExecKernel, WithoutPidfds)
{
    m_kernel.hasPidfd = false;
    expectEveryEnding();
    expectDenied();
}

TEST_F(ExecKernel, WithPidfdsThatCannotBeWaitedFor)
{
    m_kernel.waitsByPidfd = false;
    expectEveryEnding();
    expectDenied();
}

TEST_F(ExecKernel, ThatWaitsForNoProcessTellsNoStatus)
{
    m_kernel.waitsByPidfd = m_kernel.waitsByNumber = false;
    EXPECT_EQ(exec("exit_with 3"), CZeExecPipeBase::statusUnknown);
    expectDenied();
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
}

TEST_F(ExecKernel, ThatSignalsNoGroupByPidfd)
{
    m_kernel.deniedCalls[SYS_pidfd_send_signal] = EINVAL;
    expectEveryEnding();
    expectDenied();
}

TEST_F(ExecKernel, ThatInterruptsWaits)
{
    m_kernel.interruptsWaits = true;
    expectEveryEnding();
    expectDenied();
}

TEST_F(ExecKernel, WithoutPidfdsButWithAChildOfTheHosts)
{
    const pid_t own = fork();
    if (own == 0)
        _exit(5);
    siginfo_t info;
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(own), &info, WEXITED | WNOWAIT), 0);
    m_kernel.hasPidfd = false;
    EXPECT_EQ(exec("exit_with 3"), 3);
    EXPECT_EQ(exec("close_early"), 7);
    int status = 0;
    EXPECT_EQ(waitpid(own, &status, 0), own);
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST_F(ExecKernel, GivesNoStandardNumberToAPidfd)
{
    {
        const ClosedStandard closed({STDIN_FILENO});
        EXPECT_EQ(exec("exit_with 0"), 0);
    }
    EXPECT_GT(m_kernel.lowestPidfd, STDERR_FILENO);
    EXPECT_LT(m_kernel.lowestPidfd, 1000);
}

TEST_F(ExecKernel, BeforeCloseRange)
{
    m_kernel.deniedCalls[SYS_close_range] = ENOSYS;
    std::vector<int> many(500);
    for (int& descriptor : many)
        descriptor = dup(0);
    EXPECT_EQ(exec("show descriptors"), 0);
    for (const int descriptor : many)
        close(descriptor);
    EXPECT_THAT(output(), ElementsAre("0 /dev/null", StartsWith("1 pipe:"), StartsWith("2 pipe:")));
    expectDenied();
}

TEST_F(ExecKernel, WithCloseRangeOpensNothingToFindTheHostsDescriptors)
{
    if (syscall(SYS_close_range, ~0U, ~0U, 0) != 0)
        GTEST_SKIP() << "this kernel has no close_range";
    EXPECT_EQ(exec("exit_with 0"), 0);
    EXPECT_EQ(m_kernel.foldersOpened, 0);
    m_kernel.deniedCalls[SYS_close_range] = ENOSYS;
    EXPECT_EQ(exec("exit_with 0"), 0);
    EXPECT_EQ(m_kernel.foldersOpened, 1);
}

TEST_F(ExecKernel, BeforeAllOfIt)
{
    m_kernel.hasPidfd = false;
    m_kernel.keepsExitInformation = false;
    m_kernel.deniedCalls[SYS_pidfd_send_signal] = ENOSYS;
    m_kernel.deniedCalls[SYS_close_range] = ENOSYS;
    expectEveryEnding();
}

TEST_F(ExecKernel, SignalsNothingButTheProgramsGroup)
{
    m_kernel.hasPidfd = false;
    Settings second;
    second.limit = 1;
    EXPECT_EQ(exec("hang", second), CZeExecPipeBase::deadlinePassed);
    ASSERT_FALSE(m_kernel.killed.empty());
    const pid_t group = m_kernel.killed.front().first;
    EXPECT_LT(group, -1);
    for (const auto& [pid, signal] : m_kernel.killed)
        EXPECT_EQ(pid, group);
}

TEST_F(ExecKernel, ThatSignalsTheHostsGroupAtTheStartDoesNotMeanTheProgram)
{
    for (const int signal : {SIGINT, SIGQUIT, SIGUSR1, SIGTSTP, 64}) {
        m_kernel.groupSignal = signal;
        EXPECT_EQ(exec("exit_with 3"), 3);
        EXPECT_LT(took(), 20s);
    }
}

TEST_F(ExecKernel, WithAProcessThatKeepsAllThatWasOpenAtTheStart)
{
    // As if another thread of the host forked while the runner's descriptors were open.
    m_kernel.sibling = -1;
    EXPECT_EQ(exec("print 3 1 a\\n"), 3);
    EXPECT_EQ(output(), Lines({"a"}));
    EXPECT_LT(took(), 30s);
    kill(m_kernel.sibling, SIGKILL);
    EXPECT_EQ(waitpid(m_kernel.sibling, nullptr, 0), m_kernel.sibling);
}

} // namespace
