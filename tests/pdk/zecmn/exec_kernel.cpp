// The system calls of the tests that run on a kernel which lacks one or fails at one.
#include "exec_kernel.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <thread>

#include <dlfcn.h>
#include <linux/keyctl.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "tests/support/replaced_syscall.h"

namespace {

/// The kernel of the test that runs; null for the machine's own.
Kernel* kernel = nullptr;

template <class Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Looked up at start: a child that shares this memory must not look symbols up.
auto* const realClone = real<int(int (*)(void*), void*, int, void*, ...)>("clone");
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

std::optional<long> answerSyscall(long number, const SyscallArguments& arguments) noexcept
{
    if (kernel == nullptr)
        return std::nullopt;
    const auto denied = kernel->deniedCalls.find(number);
    if (denied != kernel->deniedCalls.end())
        return deny(denied->second);
    if (number == SYS_pidfd_send_signal && !kernel->sends)
        return 0;
    if (number == SYS_setsid && kernel->groupSignal != 0)
        realSyscall(SYS_kill, realSyscall(SYS_getpid), kernel->groupSignal);
    if (number == SYS_keyctl && kernel->joinError != 0)
        return answerKeyctl(arguments[0]);
    if (number == SYS_openat)
        ++kernel->foldersOpened;
    const timespec moment{0, 1000000};
    while (number == *const_cast<volatile long*>(&kernel->hangsIn))
        realSyscall(SYS_nanosleep, &moment, nullptr);
    return std::nullopt;
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
    if (kernel != nullptr && !(type == P_PIDFD ? kernel->waitsByPidfd : kernel->waitsByNumber))
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

/// Read by the leak sanitizer: the runner leaks the plan of a child that cannot be killed.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:koze_pdk_4_4::runner::run";
}

ExecKernel::ExecKernel()
{
    kernel = &m_kernel;
}

ExecKernel::~ExecKernel()
{
    kernel = nullptr;
}

void ExecKernel::killRemainingPrograms()
{
    using namespace std::chrono_literals;
    m_kernel.sends = true;
    // The environment in /proc is empty until execve has set it.
    std::vector<std::string> left;
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while ((left = processesWith(mark())).empty() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
    ASSERT_EQ(left.size(), 1);
    realKill(std::stoi(left.front()), SIGKILL);
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
}
