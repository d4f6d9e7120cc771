// The runner on kernels that reap its children, and keep their exit status or do not.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <csignal>
#include <string>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

#include "exec_kernel.h"
#include "tests/support/recording_log.h"

namespace {

using koze_pdk_4_4::CZeExecPipeBase;
using namespace std::chrono_literals;
using testing::EndsWith;

/// Ignores SIGCHLD, so that the kernel reaps every child.
class ExecKernelThatReaps : public ExecKernel {
protected:
    ExecKernelThatReaps() { std::signal(SIGCHLD, SIG_IGN); }
    ~ExecKernelThatReaps() override { std::signal(SIGCHLD, SIG_DFL); }

    void TearDown() override
    {
        std::signal(SIGCHLD, SIG_DFL);
        ExecKernel::TearDown();
    }

    void expectUnknown()
    {
        EXPECT_EQ(exec("exit_with 0"), CZeExecPipeBase::statusUnknown);
        EXPECT_EQ(exec("print 3 1 a\\n"), CZeExecPipeBase::statusUnknown);
        EXPECT_EQ(output(), Lines({"a"}));
        EXPECT_EQ(exec("die_by 9"), CZeExecPipeBase::statusUnknown);
    }
};

TEST_F(ExecKernelThatReaps, AndKeepsNoStatus)
{
    m_kernel.keepsExitInformation = false;
    expectUnknown();
    expectDenied();
}

TEST_F(ExecKernelThatReaps, AndKeepsNoStatusIsTraced)
{
    m_kernel.keepsExitInformation = false;
    {
        RecordingLog log;
        traceTo(log.handle());
        exec("exit_with 0");
        const std::vector<Line> lines = log.takeLines();
        ASSERT_EQ(lines.size(), 1);
        EXPECT_EQ(lines[0].level, 2);
        EXPECT_THAT(lines[0].text,
                    EndsWith(" ms and ended, but the host has taken its exit status away."));
    }
    traceTo({});
}

TEST_F(ExecKernelThatReaps, AndKeepsNoStatusStillSaysWhyAnotherUsersProgramCannotStart)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may become another user";
    m_kernel.keepsExitInformation = false;
    Settings settings;
    settings.user = "root";
    EXPECT_EQ(refusal("/no/such/program", settings),
              "cannot run /no/such/program: it or its interpreter is missing: No such file or "
              "directory");
}

TEST_F(ExecKernelThatReaps, AndHasNoPidfds)
{
    m_kernel.hasPidfd = false;
    expectUnknown();
}

TEST_F(ExecKernelThatReaps, AndHasNoPidfdsIsNotAskedToSignalByANumberThatIsFreeAgain)
{
    m_kernel.hasPidfd = false;
    EXPECT_EQ(execToFirstWord("hang", 60s), CZeExecPipeBase::boundExceeded);
    // SIGTERM ends the program, perhaps while SIGCONT is being sent: to the group, and when that is
    // gone, to the program. Signal 0 only tests for the group.
    ASSERT_FALSE(m_kernel.killed.empty());
    const pid_t group = m_kernel.killed.front().first;
    EXPECT_LT(group, -1);
    for (const auto& [pid, signal] : m_kernel.killed) {
        EXPECT_TRUE(pid == group || (pid == -group && signal == SIGCONT)) << pid << ' ' << signal;
        EXPECT_NE(signal, SIGKILL);
    }
}

TEST_F(ExecKernelThatReaps, AndKeepsTheStatusALittleLater)
{
    m_kernel.exitInformationAfter = 3;
    const int result = exec("exit_with 3");
    if (result == CZeExecPipeBase::statusUnknown)
        GTEST_SKIP() << "this kernel keeps no status";
    EXPECT_EQ(result, 3);
    EXPECT_EQ(m_kernel.asked, 3);
    EXPECT_EQ(m_kernel.pauses, std::vector<int>(3, 1));
}

TEST_F(ExecKernelThatReaps, AndMissesTheProcessOnce)
{
    m_kernel.missesProcess = 1;
    const int result = exec("exit_with 3");
    EXPECT_EQ(m_kernel.asked, 1);
    if (result == CZeExecPipeBase::statusUnknown)
        GTEST_SKIP() << "this kernel keeps no status";
    EXPECT_EQ(result, 3);
}

TEST_F(ExecKernelThatReaps, AndHasNoSuchProcessAnyMore)
{
    m_kernel.missesProcess = 2;
    EXPECT_EQ(exec("exit_with 0"), CZeExecPipeBase::statusUnknown);
    EXPECT_EQ(m_kernel.asked, 2);
    EXPECT_EQ(m_kernel.missesProcess, 0);
}

TEST_F(ExecKernelThatReaps, AndNeverGetsRoundToTheStatus)
{
    m_kernel.exitInformationAfter = 1000000;
    EXPECT_EQ(exec("exit_with 0"), CZeExecPipeBase::statusUnknown);
    EXPECT_LT(took(), 20s);
}

TEST_F(ExecKernelThatReaps, IsNotAskedToSignalByANumberThatMayMeanSomethingElse)
{
    m_kernel.deniedCalls[SYS_pidfd_send_signal] = EINVAL;
    const std::string file = testing::TempDir() + mark();
    Settings second;
    second.limit = 1;
    EXPECT_EQ(exec("tidy_up " + file + " 1", second), CZeExecPipeBase::deadlinePassed);
    EXPECT_EQ(unlink(file.c_str()), 0);
    expectDenied();
    // SIGTERM ends the leader, perhaps before SIGCONT is sent. Signal 0 only tests for the group.
    ASSERT_FALSE(m_kernel.killed.empty());
    EXPECT_EQ(m_kernel.killed.front().second, SIGTERM);
    for (const auto& [pid, signal] : m_kernel.killed)
        EXPECT_NE(signal, SIGKILL);
}

} // namespace
