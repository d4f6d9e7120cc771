// Processes of the account that a program runs as attack the program's process. It has a copy of
// the host's memory until execve.
#include "pdk/include/czeexecpipe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "exec_test.h"
#include "memory_attacks.h"
#include "tests/support/child.h"
#include "tests/support/replaced_syscall.h"

namespace {

void doze()
{
    const timespec moment{0, 100'000};
    realSyscall(SYS_nanosleep, &moment, nullptr);
}

} // namespace

std::optional<long> answerSyscall(long number, const SyscallArguments& /*arguments*/) noexcept
{
    if (number == SYS_execve && board != nullptr && board->holdsChildren &&
        realSyscall(SYS_getuid) == nobody) {
        board->held = static_cast<pid_t>(realSyscall(SYS_getpid));
        while (board->held != 0)
            doze();
    }
    return std::nullopt;
}

namespace {

/// Lets processes of the same account trace this one, also where the system restricts tracing, and
/// waits to be attacked.
void offerMemory()
{
    prctl(PR_SET_DUMPABLE, 1);
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    if (board->attempts == 0)
        board->held = getpid();
    doze();
}

/// The process id that the kernel assigned last.
pid_t newestProcess()
{
    const std::string load = contentsOf("/proc/loadavg");
    return static_cast<pid_t>(std::atoi(load.c_str() + load.rfind(' ')));
}

void attackNewProcesses()
{
    const pid_t newest = newestProcess();
    for (int round = 0; round < 50; ++round) {
        for (pid_t process = newest - 1; process <= newest + 2; ++process) {
            if (process != getpid())
                attackByFile(process);
        }
    }
}

/// Attacks the held child a thousand times in every way, then releases it.
void attackHeldChild()
{
    const pid_t child = board->held;
    if (child == 0)
        return doze();
    for (int round = 0; round < 1000; ++round) {
        attackByCopying(child);
        attackByFile(child);
        attackByTracing(child);
    }
    board->held = 0;
}

class ExecAttack : public ExecTest {
protected:
    ExecAttack()
    {
        secret = magic;
        board = new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Board();
    }
    ~ExecAttack() override { munmap(std::exchange(board, nullptr), sizeof(Board)); }

    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root may become another user";
    }

    /// Runs programs as `user`, in a host that lets its memory be dumped, until told to stop.
    void runUntil(const std::atomic<bool>& stop, const std::string& user)
    {
        for (long runs = 0; !stop || runs == 0; ++runs) {
            koze_pdk_4_4::CZeExecPipePosix runner(1);
            Lines lines;
            prctl(PR_SET_DUMPABLE, 1);
            EXPECT_EQ(runner.Exec("/bin/true", lines, "", 60, user, mark(), ""), 0);
            ++m_runs;
        }
    }

    void expectNotWon() const
    {
        EXPECT_EQ(board->wonByFile, 0);
        EXPECT_EQ(board->wonByCopying, 0);
        EXPECT_EQ(board->wonByTracing, 0);
        EXPECT_EQ(secret, magic);
    }

    /// Kept with the test's results.
    void recordCounts() const
    {
        RecordProperty("attempts", std::to_string(board->attempts));
        RecordProperty("opened", std::to_string(board->opened));
        RecordProperty("runs", std::to_string(m_runs));
    }

    std::atomic<long> m_runs{0};
};

/// Called where no process may trace another of its account, so that every attack fails.
void endWithoutTracing()
{
    if (std::getenv("CI") != nullptr)
        FAIL() << "tracing is not permitted, and CI must have it";
    GTEST_SKIP() << "tracing is not permitted";
}

TEST_F(ExecAttack, WinsInEveryWayWhereMemoryIsOpen)
{
    const Nobody victim(offerMemory);
    const Nobody attacker(attackHeldChild);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while ((board->attempts == 0 || board->held != 0) &&
           std::chrono::steady_clock::now() < deadline)
        doze();
    if (board->wonByFile + board->wonByCopying + board->wonByTracing == 0)
        return endWithoutTracing();
    EXPECT_GT(board->wonByFile, 0);
    EXPECT_GT(board->wonByCopying, 0);
    EXPECT_GT(board->wonByTracing, 0);
}

TEST_F(ExecAttack, FailsOnAChildThatHasSwitchedToTheAccount)
{
    board->holdsChildren = true;
    const Nobody attacker(attackHeldChild);
    std::atomic<bool> stop{false};
    std::thread other([&] { runUntil(stop, ""); });
    Settings settings;
    settings.user = "nobody";
    settings.limit = 10;
    for (int run = 0; run < 10; ++run)
        EXPECT_EQ(exec("/bin/true", settings), 0);
    stop = true;
    other.join();
    expectNotWon();
    EXPECT_GE(board->attempts, 10 * 3000);
    recordCounts();
}

/// Sets the effective user and group of this process, which runs as root, to the account's.
bool switchEffectiveUser()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[2];
    if (realSyscall(SYS_capget, &header, sets) != 0 || setresgid(0, nobody, 0) != 0 ||
        setresuid(0, nobody, 0) != 0 || realSyscall(SYS_capset, &header, sets) != 0)
        return false;
    return prctl(PR_SET_DUMPABLE, 1) == 0;
}

TEST_F(ExecAttack, FailsOnAChildOfAHostThatIsTheAccountInPart)
{
    board->holdsChildren = true;
    const Nobody attacker(attackHeldChild);
    EXPECT_TRUE(holdsInChild([this] {
        Settings settings;
        settings.user = "nobody";
        settings.limit = 10;
        return switchEffectiveUser() && exec("/bin/true", settings) == 0;
    }));
    expectNotWon();
    EXPECT_GE(board->attempts, 3000);
}

TEST_F(ExecAttack, FailsOnProgramsThatAreStartedAsFastAsPossible)
{
    const Nobody attacker(attackNewProcesses);
    std::atomic<bool> stop{false};
    std::thread other([&] { runUntil(stop, ""); });
    std::thread same([&] { runUntil(stop, "nobody"); });
    std::this_thread::sleep_for(std::chrono::seconds(1));
    stop = true;
    other.join();
    same.join();
    expectNotWon();
    EXPECT_GT(board->attempts, 1000);
    EXPECT_GT(board->opened, 0);
    recordCounts();
}

} // namespace
