#include "child_process.h"

#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>

#include <linux/futex.h>
#include <poll.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "ending.h"
#include "pidfd.h"
#include "process_group.h"

namespace koze_pdk_4_4::runner {

namespace {

/// Blocks every signal of this thread. A handler of the host must not run in a child that shares
/// the host's memory, nor write the errno that the child uses.
class SignalBlock {
public:
    SignalBlock()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_mask);
    }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &m_mask, nullptr); }

private:
    sigset_t m_mask{};
};

Ending endingFrom(int waitStatus)
{
    return WIFEXITED(waitStatus) ? Ending{Ending::Kind::exited, WEXITSTATUS(waitStatus)}
                                 : Ending{Ending::Kind::killed, WTERMSIG(waitStatus)};
}

Ending endingFrom(const siginfo_t& status)
{
    return {status.si_code == CLD_EXITED ? Ending::Kind::exited : Ending::Kind::killed,
            status.si_status};
}

} // namespace

ChildProcess::~ChildProcess()
{
    kill();
    releasePlan();
}

bool ChildProcess::start(const Deadline& deadline)
{
    const SignalBlock block;
    createProcess();
    if (!waitUntilUnshared(deadline))
        return false;
    throwFailure();
    return true;
}

void ChildProcess::createProcess()
{
    // Not CLONE_VFORK: its wait has no deadline, and execve hangs on a device that does not answer.
    // The kernel clears `sharesMemory` at the same moment, and a futex wait has a deadline.
    const bool shares = !m_plan->copiesMemory();
    int pidfd = -1;
    m_plan->sharesMemory() = shares ? 1 : 0;
    const int pid = ::clone(ChildPlan::enter, m_plan->stackTop(),
                            (shares ? CLONE_VM : 0) | CLONE_PIDFD | CLONE_CHILD_CLEARTID | SIGCHLD,
                            m_plan.get(), &pidfd, nullptr, &m_plan->sharesMemory());
    if (pid < 0) {
        m_plan->sharesMemory() = 0;
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    }
    m_pid = pid;
    if (pidfd >= 0)
        m_pidfd = moveAboveStdio(Descriptor(pidfd));
}

bool ChildProcess::waitUntilUnshared(const Deadline& deadline)
{
    const timespec time = deadline.time();
    while (m_plan->sharesMemory() != 0) {
        if (deadline.passed())
            return false;
        syscall(SYS_futex, &m_plan->sharesMemory(), FUTEX_WAIT_BITSET, 1, &time, nullptr,
                FUTEX_BITSET_MATCH_ANY);
    }
    return true;
}

void ChildProcess::throwFailure() const
{
    const Failure& failure = m_plan->failure();
    if (failure.step != nullptr)
        throw std::system_error(failure.error, std::generic_category(), failure.step);
}

/// Leaks the plan while a child that cannot be killed still uses its stack.
void ChildProcess::releasePlan()
{
    if (m_plan->sharesMemory() != 0)
        static_cast<void>(m_plan.release());
}

bool ChildProcess::ended()
{
    siginfo_t status;
    return !wait(status, WNOWAIT) || status.si_pid != 0;
}

int ChildProcess::reap()
{
    const int result = takeResult();
    throwFailure();
    return result;
}

int ChildProcess::takeResult()
{
    siginfo_t status;
    const bool ours = wait(status, 0);
    m_pid = 0;
    if (ours)
        return resultOf(endingFrom(status));
    const std::optional<int> waitStatus =
        m_pidfd.isOpen() ? statusOfReaped(m_pidfd.number()) : std::nullopt;
    return resultOf(waitStatus ? endingFrom(*waitStatus) : Ending{Ending::Kind::statusUnknown});
}

/// Calls waitid without blocking. Returns false when the host has reaped the program; else
/// `status.si_pid` is 0 while the program runs.
bool ChildProcess::wait(siginfo_t& status, int options)
{
    for (;;) {
        status.si_pid = 0;
        const bool byNumber = !m_pidfd.isOpen();
        if (waitid(byNumber ? P_PID : P_PIDFD,
                   static_cast<id_t>(byNumber ? m_pid : m_pidfd.number()), &status,
                   WEXITED | WNOHANG | options) == 0)
            return true;
        if (errno == EINVAL && !byNumber)
            m_pidfd.reset(); // P_PIDFD is missing before kernel 5.4
        else if (errno != EINTR)
            return false;
    }
}

void ChildProcess::signal(int signal)
{
    if (m_pidfd.isOpen() && signalGroupOf(m_pidfd.number(), signal))
        return;
    // While the child is not reaped, its id cannot be reused for another group.
    siginfo_t status;
    const bool numberIsOurs = wait(status, WNOWAIT);
    if (numberIsOurs && ::kill(-m_pid, signal) == 0)
        return;
    // Between clone and setsid the child is still in the host's process group.
    if (m_pidfd.isOpen())
        signalProcess(m_pidfd.number(), signal);
    else if (numberIsOurs)
        ::kill(m_pid, signal);
}

void ChildProcess::kill()
{
    if (m_pid == 0)
        return;
    signal(SIGKILL);
    awaitEnd(Deadline(std::chrono::seconds(1)));
    m_pid = 0;
}

void ChildProcess::awaitEnd(const Deadline& deadline)
{
    while (!ended()) {
        if (deadline.passed())
            return;
        pollfd end{descriptor(), POLLIN, 0};
        poll(&end, 1, deadline.timeout(pollInterval));
    }
    const pid_t group = m_pid;
    takeResult();
    // If the group id was reused, this only waits until the deadline.
    while (groupRuns(group) && !deadline.passed())
        poll(nullptr, 0, 1);
}

} // namespace koze_pdk_4_4::runner
