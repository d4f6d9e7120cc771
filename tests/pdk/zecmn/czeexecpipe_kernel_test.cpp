// The runner on kernels that lack a system call or fail at one. System calls go through the
// functions defined here; each test says which of them fail.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdarg>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <thread>

#include <dlfcn.h>
#include <linux/keyctl.h>
#include <malloc.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>

#include "closed_standard.h"
#include "exec_test.h"
#include "pdk/zecmn/child_process.h"
#include "pdk/zecmn/run.h"
#include "tests/support/recording_log.h"

namespace {

/// What the kernel of a test lacks, and which calls reached it.
struct Kernel {
    std::map<long, int> deniedCalls; // number and errno's value
    bool hasPidfd = true;
    bool waitsByPidfd = true;
    bool interruptsWaits = false; // every other one
    int waits = 0;
    int exitInformationAfter = 0; // calls that do not find it yet
    int missesProcess = 0;        // how often an ioctl of a pidfd answers ESRCH
    bool keepsExitInformation = true;
    bool sends = true;
    long hangsIn = 0; // the number of a call
    bool clones = true;
    bool maps = true;    // whether shared mappings succeed
    int groupSignal = 0; // reaches the child while it is in the host's group
    std::optional<std::chrono::nanoseconds> frozen; // the time; only waiting moves it
    int joinError = 0;                              // of joining a session keyring
    int keyError = 0; // of everything else that keyctl does, when joining fails

    id_t lowestPidfd = std::numeric_limits<id_t>::max(); // that was waited for
    std::atomic<int> asked{0};                           // how often the kernel denied something
    std::atomic<int> foldersOpened{0};                   // by a child that shares this memory
    std::vector<int> pauses;                             // in milliseconds
    std::vector<std::pair<pid_t, int>> killed;
    pid_t sibling = 0; // 0: none wanted; -1: wanted
};

Kernel* kernel;

template <class Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Looked up here, because a child that shares this memory must not look symbols up.
auto* const realClone = real<int(int (*)(void*), void*, int, void*, ...)>("clone");
auto* const realSyscall = real<long(long, ...)>("syscall");
auto* const realIoctl = real<int(int, unsigned long, ...)>("ioctl");
auto* const realWaitid = real<int(idtype_t, id_t, siginfo_t*, int)>("waitid");
auto* const realKill = real<int(pid_t, int)>("kill");
auto* const realPoll = real<int(pollfd*, nfds_t, int)>("poll");

constexpr unsigned int pidfdInfo = 11;
constexpr std::uint64_t exitBit = 1U << 3;

int deny(int error)
{
    ++kernel->asked;
    errno = error;
    return -1;
}

long answerKeyctl(long operation)
{
    const int error =
        operation == KEYCTL_JOIN_SESSION_KEYRING ? kernel->joinError : kernel->keyError;
    return error == 0 ? 1 : deny(error);
}

} // namespace

extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) noexcept
{
    va_list arguments;
    va_start(arguments, argument);
    void* pidfd = va_arg(arguments, void*);
    void* storage = va_arg(arguments, void*);
    void* cleared = va_arg(arguments, void*);
    va_end(arguments);
    if (kernel != nullptr && !kernel->clones)
        return deny(EAGAIN);
    if (kernel != nullptr && !kernel->hasPidfd) {
        ++kernel->asked;
        flags &= ~CLONE_PIDFD;
    }
    if (kernel != nullptr && kernel->sibling < 0) {
        kernel->sibling = fork();
        while (kernel->sibling == 0)
            pause();
    }
    return realClone(function, stack, flags, argument, pidfd, storage, cleared);
}

/// Children of the runner call this too.
extern "C" long syscall(long number, ...) noexcept
{
    va_list list;
    va_start(list, number);
    long a[6];
    for (long& argument : a)
        argument = va_arg(list, long);
    va_end(list);
    if (kernel != nullptr) {
        const auto denied = kernel->deniedCalls.find(number);
        if (denied != kernel->deniedCalls.end())
            return deny(denied->second);
        if (number == SYS_pidfd_send_signal && !kernel->sends)
            return 0;
        if (number == SYS_setsid && kernel->groupSignal != 0)
            realSyscall(SYS_kill, realSyscall(SYS_getpid), kernel->groupSignal);
        if (number == SYS_keyctl && kernel->joinError != 0)
            return answerKeyctl(a[0]);
        if (number == SYS_openat)
            ++kernel->foldersOpened;
        const timespec moment{0, 1000000};
        while (number == *const_cast<volatile long*>(&kernel->hangsIn))
            realSyscall(SYS_nanosleep, &moment, nullptr);
    }
    return realSyscall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    const bool asksForExit =
        kernel != nullptr && _IOC_NR(request) == pidfdInfo && _IOC_TYPE(request) == 0xff;
    if (asksForExit && !kernel->keepsExitInformation)
        return deny(ENOTTY);
    if (asksForExit && kernel->missesProcess > 0) {
        --kernel->missesProcess;
        return deny(ESRCH);
    }
    const int result = realIoctl(descriptor, request, argument);
    if (asksForExit && result == 0 && kernel->exitInformationAfter > 0) {
        --kernel->exitInformationAfter;
        ++kernel->asked;
        *static_cast<std::uint64_t*>(argument) &= ~exitBit;
    }
    return result;
}

extern "C" int waitid(idtype_t type, id_t id, siginfo_t* info, int options)
{
    if (kernel != nullptr && type == P_PIDFD && !kernel->waitsByPidfd)
        return deny(EINVAL);
    if (kernel != nullptr && kernel->interruptsWaits && ++kernel->waits % 2 == 1)
        return deny(EINTR);
    if (kernel != nullptr && type == P_PIDFD)
        kernel->lowestPidfd = std::min(kernel->lowestPidfd, id);
    return realWaitid(type, id, info, options);
}

extern "C" int kill(pid_t pid, int signal) noexcept
{
    if (kernel != nullptr) {
        kernel->killed.emplace_back(pid, signal);
        if (!kernel->sends)
            return 0;
    }
    return realKill(pid, signal);
}

extern "C" void* mmap(void* address, std::size_t size, int protection, int flags, int descriptor,
                      off_t offset) noexcept
{
    if (kernel != nullptr && !kernel->maps && (flags & MAP_SHARED) != 0) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    // Looked up at the first call, because a sanitizer maps memory before the others are looked up.
    static auto* const realMmap = real<void*(void*, std::size_t, int, int, int, off_t)>("mmap");
    return realMmap(address, size, protection, flags, descriptor, offset);
}

extern "C" int poll(pollfd* events, nfds_t count, int timeout)
{
    if (kernel != nullptr && events == nullptr)
        kernel->pauses.push_back(timeout);
    if (kernel != nullptr && kernel->frozen) {
        *kernel->frozen += std::chrono::milliseconds(timeout);
        return 0;
    }
    return realPoll(events, count, timeout);
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    if (kernel == nullptr || !kernel->frozen || clock != CLOCK_MONOTONIC)
        return static_cast<int>(realSyscall(SYS_clock_gettime, clock, time));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*kernel->frozen);
    *time = {seconds.count(), (*kernel->frozen - seconds).count()};
    return 0;
}

/// The runner leaks the plan of a child that cannot be killed.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:koze_pdk_4_4::runner::run";
}

namespace {

using koze_pdk_4_4::CZeExecPipeBase;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

class ExecKernel : public ExecTest {
protected:
    ExecKernel() { kernel = &m_kernel; }
    ~ExecKernel() override { kernel = nullptr; }

    void expectDenied() const { EXPECT_GT(m_kernel.asked, 0); }

    void expectEveryEnding()
    {
        EXPECT_EQ(exec("print 0 1 a\\n"), 0);
        EXPECT_EQ(output(), Lines({"a"}));
        EXPECT_EQ(exec("exit_with 3"), 3);
        EXPECT_EQ(exec("die_by 9"), 1009);
        EXPECT_EQ(exec("leave_child 4"), 4);
        EXPECT_EQ(exec("close_early"), 7);
        EXPECT_EQ(exec("lines 1 67108864"), CZeExecPipeBase::boundExceeded);
        EXPECT_NE(refusal("/no/such/program"), "");
        expectEndDespiteIgnoredTerm();
    }

    /// Ends a program that the kernel could not end.
    void killRemainingPrograms()
    {
        m_kernel.sends = true;
        // The environment in /proc is empty until execve has set it.
        std::vector<std::string> left;
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        while ((left = processesWith(mark())).empty() &&
               std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(1ms);
        ASSERT_EQ(left.size(), 1);
        realKill(std::stoi(left.front()), SIGKILL);
        EXPECT_GT(waitpid(-1, nullptr, 0), 0);
    }

    Kernel m_kernel;
};

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
    ASSERT_EQ(realWaitid(P_PID, static_cast<id_t>(own), &info, WEXITED | WNOWAIT), 0);
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
    if (realSyscall(SYS_close_range, ~0U, ~0U, 0) != 0)
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
    realKill(m_kernel.sibling, SIGKILL);
    EXPECT_EQ(waitpid(m_kernel.sibling, nullptr, 0), m_kernel.sibling);
}

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
