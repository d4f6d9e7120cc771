#include "tests/support/system_call_faults.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <optional>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/descriptor.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestRun{20};

/// As section 2 of the manual names them.
const CallErrors knownErrors{
    {SYS_access, {EACCES, EIO, ELOOP, ENOENT, ENOMEM, ENOTDIR}},
    {SYS_chdir, {EACCES, EIO, ELOOP, ENOENT, ENOMEM, ENOTDIR}},
    {SYS_clone, {EAGAIN, EINVAL, ENOMEM, ENOSPC, EPERM}},
    {SYS_clone3, {EAGAIN, EBUSY, EINVAL, ENOMEM, ENOSPC, EOPNOTSUPP, EPERM, ENOSYS}},
    {SYS_close, {EBADF, EDQUOT, EINTR, EIO, ENOSPC}},
    {SYS_close_range, {EINVAL, EMFILE, ENOMEM, ENOSYS}},
    {SYS_dup3, {EBADF, EBUSY, EINTR, EINVAL, EMFILE}},
    {SYS_execve,
     {E2BIG, EACCES, EIO, ELOOP, EMFILE, ENFILE, ENOENT, ENOEXEC, ENOMEM, ENOTDIR, EPERM, ETXTBSY}},
    {SYS_fchmod, {EBADF, EIO, EPERM, EROFS}},
    {SYS_fcntl, {EACCES, EAGAIN, EBADF, EINVAL, EMFILE}},
    {SYS_fstat, {EBADF, ENOMEM, EOVERFLOW}},
    {SYS_fstatfs, {EBADF, EINTR, EIO, ENOMEM, ENOSYS, EOVERFLOW}},
    {SYS_fsync, {EBADF, EDQUOT, EINTR, EINVAL, EIO, ENOSPC, EROFS}},
    {SYS_ftruncate, {EBADF, EFBIG, EINTR, EINVAL, EIO, EPERM}},
    {SYS_futex, {EAGAIN, EINTR, EINVAL, ENOSYS, ETIMEDOUT}},
    // Not ENOENT, which is the end of the folder to the C library.
    {SYS_getdents64, {EBADF, EFAULT, EINVAL, ENOTDIR}},
    {SYS_ioctl, {EBADF, EFAULT, EINVAL, ENOTTY}},
    {SYS_keyctl, {EACCES, EDQUOT, ENOMEM, ENOSYS, EPERM}},
    {SYS_kill, {EINVAL, EPERM, ESRCH}},
    {SYS_lseek, {EBADF, EINVAL, EOVERFLOW, ESPIPE}},
    {SYS_memfd_create, {EFAULT, EINVAL, EMFILE, ENFILE, ENOMEM}},
    {SYS_mmap, {EACCES, EAGAIN, EINVAL, ENFILE, ENODEV, ENOMEM, EPERM}},
    {SYS_newfstatat, {EACCES, EBADF, ELOOP, ENOENT, ENOMEM, ENOTDIR, EOVERFLOW}},
    {SYS_openat,
     {EACCES, EBUSY, EDQUOT, EEXIST, EINTR, EISDIR, ELOOP, EMFILE, ENFILE, ENODEV, ENOENT, ENOMEM,
      ENOSPC, ENOTDIR, ENXIO, EPERM, EROFS, ETXTBSY, EWOULDBLOCK}},
    {SYS_pidfd_open, {EINVAL, EMFILE, ENFILE, ENODEV, ENOMEM, ESRCH}},
    {SYS_pidfd_send_signal, {EBADF, EINVAL, EPERM, ESRCH, ENOSYS}},
    {SYS_pipe2, {EFAULT, EINVAL, EMFILE, ENFILE}},
    {SYS_poll, {EFAULT, EINTR, EINVAL, ENOMEM}},
    {SYS_prctl, {EACCES, EINVAL, EPERM}},
    {SYS_read, {EAGAIN, EBADF, EINTR, EINVAL, EIO, EISDIR}},
    {SYS_readlink, {EACCES, EINVAL, EIO, ELOOP, ENOENT, ENOMEM, ENOTDIR}},
    {SYS_readlinkat, {EACCES, EBADF, EINVAL, EIO, ELOOP, ENOENT, ENOMEM, ENOTDIR}},
    {SYS_rename,
     {EACCES, EBUSY, EDQUOT, EINVAL, EISDIR, ELOOP, EMLINK, ENOENT, ENOMEM, ENOSPC, ENOTDIR,
      ENOTEMPTY, EPERM, EROFS, EXDEV}},
    {SYS_rt_sigaction, {EFAULT, EINVAL}},
    {SYS_rt_sigprocmask, {EFAULT, EINVAL}},
    {SYS_rt_sigtimedwait, {EAGAIN, EINTR, EINVAL}},
    {SYS_setgroups, {EFAULT, EINVAL, ENOMEM, EPERM}},
    {SYS_setresgid, {EINVAL, EPERM}},
    {SYS_setresuid, {EAGAIN, EINVAL, EPERM}},
    {SYS_setsid, {EPERM}},
    {SYS_unlink, {EACCES, EBUSY, EIO, EISDIR, ELOOP, ENOENT, ENOMEM, ENOTDIR, EPERM, EROFS}},
    {SYS_waitid, {ECHILD, EINTR, EINVAL}},
    {SYS_write, {EAGAIN, EBADF, EDQUOT, EFBIG, EINTR, EINVAL, EIO, ENOSPC, EPERM, EPIPE}},
};

/// What the process and its child share.
struct Shared {
    std::atomic<int> listener{-1}; // the child's descriptor
    std::atomic<bool> isHeld{false};
    std::atomic<bool> isCounting{false};
    CallFault fault;
    bool wasInjected = false;
    char complaint[4096] = {};
};

int installFilter(const CallErrors& errors)
{
    std::vector<sock_filter> code{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const auto& [call, unused] : errors) {
        code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call), 0, 1));
        code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(code.size()), code.data()};
    // A program that takes on another account needs root, which needs no PR_SET_NO_NEW_PRIVS.
    if (geteuid() != 0)
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return static_cast<int>(
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

/// The child: does the work when its parent holds the listener.
[[noreturn]] void runWork(const FaultyWork& work, Shared& shared)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int listener = installFilter(work.errors);
    shared.listener = listener < 0 ? -2 : listener;
    while (!shared.isHeld)
        sched_yield();
    close(listener);
    shared.isCounting = true;
    std::string complaint;
    try {
        work.operation();
        shared.isCounting = false;
        complaint = work.verdict(shared.fault);
    } catch (const std::exception& error) {
        shared.isCounting = false;
        complaint = std::string("throws ") + error.what();
    }
    complaint.copy(shared.complaint, sizeof shared.complaint - 1);
    _exit(0);
}

/// Answers the calls of a child.
class Supervisor {
public:
    Supervisor(pid_t child, Shared& shared)
        : m_child(child), m_shared(shared),
          m_end(static_cast<int>(syscall(SYS_pidfd_open, child, 0)))
    {
        while (m_shared.listener == -1)
            sched_yield();
        m_listener = Descriptor(static_cast<int>(
            syscall(SYS_pidfd_getfd, m_end.number(), m_shared.listener.load(), 0)));
        m_shared.isHeld = true;
    }

    /// False when the child takes too long.
    bool follow()
    {
        for (;;) {
            pollfd events[] = {{m_listener.number(), POLLIN, 0}, {m_end.number(), POLLIN, 0}};
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now());
            if (left.count() <= 0 || poll(events, 2, static_cast<int>(left.count())) == 0)
                return false;
            if ((events[0].revents & POLLIN) != 0)
                answer();
            else if (events[1].revents != 0)
                return true;
        }
    }

private:
    void answer()
    {
        seccomp_notif call{};
        if (ioctl(m_listener.number(), SECCOMP_IOCTL_NOTIF_RECV, &call) != 0)
            return; // its process was killed meanwhile
        seccomp_notif_resp answer{};
        answer.id = call.id;
        if (mustFail(call))
            answer.error = -m_shared.fault.error;
        else
            answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        ioctl(m_listener.number(), SECCOMP_IOCTL_NOTIF_SEND, &answer);
    }

    bool mustFail(const seccomp_notif& call)
    {
        const CallFault& fault = m_shared.fault;
        const auto process = static_cast<pid_t>(call.pid);
        if (!m_shared.isCounting || m_shared.wasInjected || call.data.nr != fault.call ||
            fault.inChild != (process != m_child) || executesProgram(process))
            return false;
        m_shared.wasInjected = ++m_seen == fault.number;
        return m_shared.wasInjected;
    }

    /// Whether the process runs another program than this one.
    bool executesProgram(pid_t process) const
    {
        std::error_code error;
        return process != m_child &&
               std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error) !=
                   std::filesystem::read_symlink("/proc/self/exe");
    }

    pid_t m_child;
    Shared& m_shared;
    Descriptor m_end;
    Descriptor m_listener;
    unsigned int m_seen = 0;
    Clock::time_point m_deadline = Clock::now() + longestRun;
};

/// Memory that this process and its children share.
class SharedMemory {
public:
    SharedMemory()
        : m_shared(new (mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                             MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Shared)
    {}
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    ~SharedMemory() { munmap(m_shared, sizeof *m_shared); }

    Shared& operator*() const { return *m_shared; }

private:
    Shared* m_shared;
};

std::string nameOf(const CallFault& fault)
{
    return "call " + std::to_string(fault.call) + ", number " + std::to_string(fault.number) +
           (fault.inChild ? " of a child" : "") + ", fails with " + strerrorname_np(fault.error);
}

/// Runs the work once. Returns whether the fault was injected.
bool runOnce(const FaultyWork& work, const CallFault& fault)
{
    const SharedMemory memory;
    (*memory).fault = fault;
    const pid_t child = fork();
    if (child == 0)
        runWork(work, *memory);
    const bool hasEnded = Supervisor(child, *memory).follow();
    if (!hasEnded)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(hasEnded) << nameOf(fault) << ": it takes too long";
    EXPECT_TRUE(!hasEnded || status == 0) << nameOf(fault) << ": ends with " << status;
    EXPECT_STREQ((*memory).complaint, "") << nameOf(fault);
    return (*memory).wasInjected;
}

} // namespace

CallErrors errorsOf(const std::vector<long>& calls)
{
    CallErrors errors;
    for (const long call : calls)
        errors.emplace(call, knownErrors.at(call));
    return errors;
}

unsigned int failEachCall(const FaultyWork& work)
{
    unsigned int faults = 0;
    for (const bool inChild : {false, true}) {
        for (const auto& [call, errors] : work.errors) {
            bool isReached = true;
            for (unsigned int number = 1; isReached; ++number) {
                for (const int error : errors) {
                    isReached = runOnce(work, {call, error, number, inChild});
                    if (!isReached)
                        break;
                    ++faults;
                }
            }
        }
    }
    return faults;
}

bool mayFailCalls()
{
    const SharedMemory memory;
    const pid_t child = fork();
    if (child == 0)
        _exit(installFilter({}) < 0 ? 1 : 0);
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0;
}
