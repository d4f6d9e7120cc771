// Replaces syscall() of the test program that includes it, so that the test chooses what the kernel
// knows of pidfds.
#ifndef TESTS_COMMAND_INTERRUPT_PIDFD_KERNEL_H
#define TESTS_COMMAND_INTERRUPT_PIDFD_KERNEL_H

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <functional>
#include <limits>

#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

struct PidfdKernel {
    bool hasPidfds = true;                            // since 5.3
    bool signalsGroups = true;                        // since 6.9
    int pidfdsLeft = std::numeric_limits<int>::max(); // that can be opened
    std::function<void(pid_t)> beforeOpen = [](pid_t /*id*/) {};
    std::function<void(int)> beforeSend = [](int /*signal*/) {};
    std::atomic<int> denials{0};
};

/// The kernel of the test that runs; null for the machine's own.
inline PidfdKernel* pidfdKernel = nullptr;

// Looked up at start, before a child process shares this memory.
inline auto* const realSyscall = reinterpret_cast<long (*)(long, ...)>(dlsym(RTLD_NEXT, "syscall"));

inline long denySyscall(int error)
{
    ++pidfdKernel->denials;
    errno = error;
    return -1;
}

/// The runner's children call it, too.
// NOLINTNEXTLINE(misc-definitions-in-headers): one program, one source
extern "C" long syscall(long number, ...) noexcept
{
    va_list list;
    va_start(list, number);
    long a[6];
    for (long& argument : a)
        argument = va_arg(list, long);
    va_end(list);
    if (pidfdKernel != nullptr && number == SYS_pidfd_open) {
        if (!pidfdKernel->hasPidfds)
            return denySyscall(ENOSYS);
        if (pidfdKernel->pidfdsLeft-- <= 0)
            return denySyscall(EMFILE);
        pidfdKernel->beforeOpen(static_cast<pid_t>(a[0]));
    }
    if (pidfdKernel != nullptr && number == SYS_pidfd_send_signal) {
        if (!pidfdKernel->hasPidfds)
            return denySyscall(ENOSYS);
        if (!pidfdKernel->signalsGroups && static_cast<unsigned int>(a[3]) != 0)
            return denySyscall(EINVAL);
        pidfdKernel->beforeSend(static_cast<int>(a[1]));
    }
    return realSyscall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

#endif
