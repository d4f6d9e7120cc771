// The runner in hosts that handle signals, reap children, have children or threads of their own.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <list>
#include <thread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "exec_test.h"

using koze_pdk_4_4::CZeExecPipeBase;
using testing::AnyOf;
using testing::Eq;

namespace {

class ExecHost : public ExecTest {};

/// Handles a signal while it lives.
class Handler {
public:
    Handler(int signal, void (*handler)(int), int flags = 0) : m_signal(signal)
    {
        struct sigaction action {};
        action.sa_handler = handler;
        action.sa_flags = flags;
        sigaction(signal, &action, &m_before);
    }
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    ~Handler() { sigaction(m_signal, &m_before, nullptr); }

private:
    int m_signal;
    struct sigaction m_before {};
};

TEST_F(ExecHost, WithoutPeculiarities)
{
    expectEveryEnding();
}

TEST_F(ExecHost, ThatHandlesSigchld)
{
    static std::atomic<int> handled;
    handled = 0;
    const Handler handler(SIGCHLD, [](int) { ++handled; });
    expectEveryEnding();
    EXPECT_GT(handled, 0);
}

/// Whether this kernel still tells the status of a process after it has been reaped.
bool kernelKeepsStatus()
{
    int pidfd = -1;
    const long pid = syscall(SYS_clone, CLONE_PIDFD | SIGCHLD, nullptr, &pidfd, nullptr, nullptr);
    if (pid == 0)
        _exit(3);
    waitpid(static_cast<pid_t>(pid), nullptr, 0);
    std::uint64_t info[8] = {1U << 3};
    const bool kept = ioctl(pidfd, _IOWR(0xff, 11, info), info) == 0 && (info[0] & (1U << 3)) != 0;
    close(pidfd);
    return kept;
}

class ExecReapingHost : public ExecHost {
protected:
    /// Every way that a run can end, each status known or expressly unknown.
    void expectEveryKnownEnding()
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            expectResult("exit_with 0", 0);
            expectResult("print 3 1 a\\n", 3);
            EXPECT_EQ(output(), Lines({"a"}));
            expectResult("die_by 9", 1009);
        }
        expectResult("leave_child 4", 4);
        EXPECT_EQ(exec("lines 1 67108864"), CZeExecPipeBase::boundExceeded);
        EXPECT_NE(refusal("/no/such/program"), "");
        expectEndDespiteIgnoredTerm();
    }

private:
    void expectResult(const std::string& command, int result)
    {
        const int otherwise = m_keeps ? result : CZeExecPipeBase::statusUnknown;
        EXPECT_THAT(exec(command), AnyOf(Eq(result), Eq(otherwise)));
    }

    bool m_keeps = kernelKeepsStatus();
};

TEST_F(ExecReapingHost, ThatIgnoresSigchld)
{
    const Handler handler(SIGCHLD, SIG_IGN);
    expectEveryKnownEnding();
    exec("show signals");
    EXPECT_EQ(output(), Lines());
}

TEST_F(ExecReapingHost, ThatWantsNoZombies)
{
    const Handler handler(
        SIGCHLD, [](int) {}, SA_NOCLDWAIT);
    expectEveryKnownEnding();
}

TEST_F(ExecReapingHost, ThatReapsEveryChildInAThread)
{
    std::atomic<bool> stop{false};
    std::atomic<int> stolen{0};
    std::thread reaper([&] {
        while (!stop) {
            if (waitpid(-1, nullptr, WNOHANG) > 0)
                ++stolen;
            std::this_thread::yield();
        }
    });
    // Repeated, because on a busy machine the runner may always reap its child first.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    do
        expectEveryKnownEnding();
    while (stolen == 0 && std::chrono::steady_clock::now() < deadline);
    stop = true;
    reaper.join();
    EXPECT_GT(stolen, 0);
}

TEST_F(ExecReapingHost, ThatReapsEveryChildInItsHandler)
{
    static std::atomic<int> stolen;
    stolen = 0;
    const Handler handler(SIGCHLD, [](int) {
        const int before = errno;
        while (waitpid(-1, nullptr, WNOHANG) > 0)
            ++stolen;
        errno = before;
    });
    expectEveryKnownEnding();
    EXPECT_GT(stolen, 0);
}

TEST_F(ExecHost, WithAChildOfItsOwn)
{
    int gate[2];
    ASSERT_EQ(pipe2(gate, O_CLOEXEC), 0);
    const pid_t own = fork();
    if (own == 0) {
        char byte = 0;
        close(gate[1]);
        _exit(static_cast<int>(read(gate[0], &byte, 1)) + 6);
    }
    const pid_t ended = fork();
    if (ended == 0)
        _exit(5);
    siginfo_t info;
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(ended), &info, WEXITED | WNOWAIT), 0);
    expectEveryEnding();
    close(gate[0]);
    close(gate[1]);
    for (const auto& [child, status] : {std::pair(own, 6), std::pair(ended, 5)}) {
        int found = 0;
        EXPECT_EQ(waitpid(child, &found, 0), child);
        EXPECT_EQ(WEXITSTATUS(found), status);
    }
}

TEST_F(ExecHost, ThatInheritsWhatAProgramLeavesKeepsItsStatus)
{
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    EXPECT_EQ(execToFirstWord("leave_session", std::chrono::milliseconds(100)),
              CZeExecPipeBase::boundExceeded);
    const std::vector<std::string> left = processesWith(mark());
    ASSERT_EQ(left.size(), 1);
    const pid_t process = std::stoi(left.front());
    kill(process, SIGUSR1);
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(WTERMSIG(status), SIGUSR1);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

TEST_F(ExecHost, ThatBlocksAndIgnoresSignals)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    {
        std::list<Handler> ignored;
        for (int signal = 1; signal < 65; ++signal) {
            if (signal != SIGCHLD)
                ignored.emplace_back(signal, signal == SIGUSR1 ? [](int) {} : SIG_IGN);
        }
        expectEveryEnding();
        EXPECT_EQ(exec("show signals"), 0);
        EXPECT_EQ(output(), Lines());
        const std::chrono::seconds grace(60);
        EXPECT_EQ(execToFirstWord("hang", grace), CZeExecPipeBase::boundExceeded);
        EXPECT_LT(took(), grace); // by SIGTERM
    }
    // The host got no signal but SIGCHLD.
    sigset_t pending;
    sigpending(&pending);
    for (int signal = 1; signal < 65; ++signal)
        EXPECT_EQ(sigismember(&pending, signal) == 1 && signal != SIGCHLD, false) << signal;
    const timespec none{};
    sigset_t child;
    sigemptyset(&child);
    sigaddset(&child, SIGCHLD);
    sigtimedwait(&child, nullptr, &none);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(ExecHost, WithThreadsThatRunProgramsTheirOwnWay)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([this, number, &wrong] {
            const std::string text = "text" + std::to_string(number);
            for (int i = 0; i < 25; ++i) {
                koze_pdk_4_4::CZeExecPipePosix runner(1);
                Lines lines;
                const int result = runner.Exec(
                    commandLine("print " + std::to_string(number) + " 1 " + text + "\\n"), lines,
                    "", 60, "", mark(), "");
                if (result != number || lines != Lines({text}))
                    ++wrong;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ExecHost, InAStormOfInterruptions)
{
    static std::atomic<int> interruptions;
    interruptions = 0;
    const Handler handler(SIGALRM, [](int) { ++interruptions; });
    const itimerval storm{{0, 200}, {0, 200}};
    setitimer(ITIMER_REAL, &storm, nullptr);
    expectEveryEnding();
    Settings second;
    second.limit = 1;
    second.input = std::string(1 << 20, 'x');
    EXPECT_EQ(exec("hang", second), CZeExecPipeBase::deadlinePassed);
    EXPECT_GE(took(), std::chrono::seconds(1));
    const itimerval calm{};
    setitimer(ITIMER_REAL, &calm, nullptr);
    EXPECT_GT(interruptions, 1000);
}

TEST_F(ExecHost, ThatCancelsTheThread)
{
    std::atomic<bool> started{false};
    int result = -1;
    std::thread thread([&] {
        started = true;
        result = exec("close_early");
        pthread_testcancel();
        result = -2;
    });
    while (!started) {
    }
    pthread_cancel(thread.native_handle());
    thread.join();
    EXPECT_EQ(result, 7);
}

} // namespace
