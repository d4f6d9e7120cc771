// Replaces syscall() of the test program that includes it, so that the test chooses what the kernel
// knows of pidfds.
#ifndef TESTS_COMMAND_INTERRUPT_PIDFD_KERNEL_H
#define TESTS_COMMAND_INTERRUPT_PIDFD_KERNEL_H

#include <atomic>
#include <cerrno>
#include <functional>
#include <limits>
#include <optional>

#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/replaced_syscall.h"

struct PidfdKernel {
    bool hasPidfds = true;                            // since 5.3
    bool signalsGroups = true;                        // since 6.9
    int pidfdsLeft = std::numeric_limits<int>::max(); // that can be opened
    std::function<void(pid_t)> beforeOpen = [](pid_t /*id*/) {};
    std::function<void(int)> beforeSend = [](int /*signal*/) {};
    /// Whether the process that a descriptor holds exists: 0, or an error.
    std::function<int(int)> probeError = [](int /*descriptor*/) { return 0; };
    std::atomic<int> denials{0};
};

/// The kernel of the test that runs; null for the machine's own.
inline PidfdKernel* pidfdKernel = nullptr;

inline long denySyscall(int error)
{
    ++pidfdKernel->denials;
    errno = error;
    return -1;
}

inline std::optional<long> answerSyscall(long number, const SyscallArguments& arguments) noexcept
{
    if (pidfdKernel != nullptr && number == SYS_pidfd_open) {
        if (!pidfdKernel->hasPidfds)
            return denySyscall(ENOSYS);
        if (pidfdKernel->pidfdsLeft-- <= 0)
            return denySyscall(EMFILE);
        pidfdKernel->beforeOpen(static_cast<pid_t>(arguments[0]));
    }
    if (pidfdKernel != nullptr && number == SYS_pidfd_send_signal) {
        if (!pidfdKernel->hasPidfds)
            return denySyscall(ENOSYS);
        if (!pidfdKernel->signalsGroups && static_cast<unsigned int>(arguments[3]) != 0)
            return denySyscall(EINVAL);
        const bool isProbe =
            static_cast<int>(arguments[1]) == 0 && static_cast<unsigned int>(arguments[3]) == 0;
        const int error = isProbe ? pidfdKernel->probeError(static_cast<int>(arguments[0])) : 0;
        if (error != 0)
            return denySyscall(error);
        pidfdKernel->beforeSend(static_cast<int>(arguments[1]));
    }
    return std::nullopt;
}

#endif
