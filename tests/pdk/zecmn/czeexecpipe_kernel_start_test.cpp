// The runner on kernels that fail or hang while a program starts, or cannot end it.
#include "pdk/include/czeexecpipe.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <malloc.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "exec_kernel.h"
#include "pdk/zecmn/child_process.h"
#include "pdk/zecmn/run.h"

namespace {

using koze_pdk_4_4::CZeExecPipeBase;
using namespace std::chrono_literals;

TEST_F(ExecKernel, SaysWhichStepItFailedAt)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may become another user";
    const std::vector<std::pair<long, std::string>> steps = {
        {SYS_setsid, "cannot lead a session: Input/output error"},
        {SYS_dup3, "cannot place its streams: Input/output error"},
        {SYS_prctl, "cannot become its user: Input/output error"},
        {SYS_sched_getscheduler, "cannot leave the host's real-time class: Input/output error"},
        {SYS_keyctl, "cannot leave the host's session keyring: Input/output error"},
        {SYS_setgroups, "cannot become its user: Input/output error"},
        {SYS_setresgid, "cannot become its user: Input/output error"},
        {SYS_setresuid, "cannot become its user: Input/output error"},
        {SYS_capget, "cannot drop the host's capabilities: Input/output error"},
        {SYS_capset, "cannot drop the host's capabilities: Input/output error"},
        {SYS_chdir, "cannot enter its directory: Input/output error"},
        {SYS_execve, "it cannot be executed: Input/output error"}};
    Settings settings;
    settings.directory = "/";
    settings.user = "root";
    for (const auto& [number, text] : steps) {
        m_kernel.deniedCalls = {{number, EIO}};
        EXPECT_EQ(refusal("/bin/true", settings), "cannot run /bin/true: " + text);
    }
    for (const long number : {SYS_openat, SYS_getdents64}) {
        m_kernel.deniedCalls = {{SYS_close_range, ENOSYS}, {number, EIO}};
        EXPECT_EQ(refusal("/bin/true"),
                  "cannot run /bin/true: cannot close the host's descriptors: Input/output error");
    }
}

TEST_F(ExecKernel, WithoutKeyringsRunsAProgramAsAnotherUser)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may become another user";
    Settings settings;
    settings.user = "root";
    for (const int error : {ENOSYS, EPERM}) {
        m_kernel.joinError = error;
        m_kernel.keyError = error;
        EXPECT_EQ(exec("exit_with 3", settings), 3);
    }
}

TEST_F(ExecKernel, ThatDoesNotLetGoOfTheSessionKeyringRunsNoProgramAsAnotherUser)
{
    Settings settings;
    settings.user = "root";
    const std::string begin = "cannot run /bin/true: cannot leave the host's session keyring: ";
    m_kernel.joinError = EPERM; // but the keyring can be used
    EXPECT_EQ(refusal("/bin/true", settings), begin + "Operation not permitted");
    m_kernel.keyError = EACCES;
    EXPECT_EQ(refusal("/bin/true", settings), begin + "Permission denied");
    m_kernel.joinError = EDQUOT;
    m_kernel.keyError = EPERM;
    EXPECT_EQ(refusal("/bin/true", settings), begin + "Disk quota exceeded");
    EXPECT_EQ(exec("exit_with 3"), 3);
}

TEST_F(ExecKernel, ThatHasNoMemoryToShareRunsNoProgramAsAnotherUser)
{
    m_kernel.maps = false;
    Settings settings;
    settings.user = "root";
    EXPECT_EQ(refusal("/bin/true", settings),
              "cannot run /bin/true: cannot start a process: Cannot allocate memory");
    EXPECT_EQ(exec("exit_with 3"), 3);
}

TEST_F(ExecKernel, ThatHasNoProcessLeftCostsNoMemory)
{
    m_kernel.clones = false;
    const std::string reason =
        "cannot run /bin/true: cannot start a process: Resource temporarily unavailable";
    EXPECT_EQ(refusal("/bin/true"), reason);
    const std::size_t before = mallinfo2().uordblks;
    for (int attempt = 0; attempt < 20; ++attempt)
        EXPECT_EQ(refusal("/bin/true"), reason);
    EXPECT_LT(mallinfo2().uordblks, before + (std::size_t{64} << 10));
}

/// Runs a program with a limit of 300 milliseconds.
int runBriefly(const std::string& command)
{
    koze_pdk_4_4::runner::Program program;
    program.arguments = koze_pdk_4_4::runner::splitCommand(commandLine(command));
    Lines output;
    Lines errors;
    return koze_pdk_4_4::runner::run(program, "", {300ms, 60s, 1000, 1000}, output, errors);
}

TEST_F(ExecKernel, ThatDoesNotGetRoundToStartingTheProgram)
{
    for (const long call : {SYS_setsid, SYS_execve}) {
        m_kernel.hangsIn = call;
        for (const bool hasPidfd : {true, false}) {
            m_kernel.hasPidfd = hasPidfd;
            const auto start = std::chrono::steady_clock::now();
            const auto busy = threadTime();
            EXPECT_EQ(runBriefly("exit_with 0"), CZeExecPipeBase::deadlinePassed);
            EXPECT_GE(std::chrono::steady_clock::now() - start, 300ms);
            EXPECT_LT(threadTime() - busy, 75ms);
            expectNoChild();
        }
    }
}

TEST_F(ExecKernel, ThatDoesNotGetRoundToSwitchingTheUserHasALimitToo)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may become another user";
    koze_pdk_4_4::runner::Program program;
    program.arguments = {commandLine("exit_with"), "0"};
    program.identity = koze_pdk_4_4::runner::lookUpUser("root");
    Lines lines;
    for (const long call : {SYS_setsid, SYS_setresuid, SYS_execve}) {
        m_kernel.hangsIn = call;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(koze_pdk_4_4::runner::run(program, "", {100ms, 100ms, 1000, 1000}, lines, lines),
                  CZeExecPipeBase::deadlinePassed);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
        expectNoChild();
    }
}

TEST_F(ExecKernel, ThatCannotEndAProgramLeavesItItsMemory)
{
    m_kernel.hangsIn = SYS_execve;
    m_kernel.sends = false;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(runBriefly("exit_with 5"), CZeExecPipeBase::deadlinePassed);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 1300ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    // Overwrites memory that was freed, so that a freed plan shows.
    std::vector<std::vector<char>> others;
    for (std::size_t size = 16; size < 256 << 10; size += size / 4)
        others.emplace_back(size, 'x');
    m_kernel.hangsIn = 0;
    int status = 0;
    EXPECT_GT(waitpid(-1, &status, 0), 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST_F(ExecKernel, ThatCannotEndAStartedProgramDoesNotHoldTheHostUp)
{
    m_kernel.sends = false;
    EXPECT_EQ(runBriefly("close_early"), 7);
    koze_pdk_4_4::runner::Program program;
    program.arguments = koze_pdk_4_4::runner::splitCommand(commandLine("hang"));
    program.environment = {mark()};
    Lines output;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(koze_pdk_4_4::runner::run(program, "", {300ms, 300ms, 1000, 1000}, output, output),
              CZeExecPipeBase::deadlinePassed);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    killRemainingPrograms();
}

TEST_F(ExecKernel, ThatCannotEndAProgramHasASecondForIt)
{
    koze_pdk_4_4::runner::Program program;
    program.arguments = {commandLine("hang")};
    program.environment = {mark()};
    const koze_pdk_4_4::Descriptor null = koze_pdk_4_4::runner::openInput("");
    koze_pdk_4_4::runner::ChildProcess child(std::make_unique<koze_pdk_4_4::runner::ChildPlan>(
        program,
        koze_pdk_4_4::runner::StandardStreams{null.number(), null.number(), null.number()}));
    ASSERT_TRUE(child.start(koze_pdk_4_4::runner::Deadline(60s)));
    m_kernel.sends = false;
    m_kernel.frozen = 100s;
    child.kill();
    const auto passed = *m_kernel.frozen - 100s;
    m_kernel.frozen.reset();
    EXPECT_EQ(passed, 1s);
    killRemainingPrograms();
}

TEST_F(ExecKernel, ThatCannotEndAGrandchildHoldsTheHostUpForASecond)
{
    m_kernel.sends = false;
    EXPECT_EQ(execToFirstWord("leave_child 0", 300ms), CZeExecPipeBase::boundExceeded);
    EXPECT_GE(took(), 1300ms);
    EXPECT_LT(took(), 20s);
}

} // namespace
