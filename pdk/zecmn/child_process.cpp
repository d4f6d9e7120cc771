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

namespace {

/// Holds every signal of this thread back. A handler of the host must not run in a child that
/// shares the host's memory, nor change errno under the child's feet.
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

using koze_pdk_4_4::runner::Ending;

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

namespace koze_pdk_4_4::runner {

ChildProcess::~ChildProcess()
{
    kill();
    releasePlan();
}

bool ChildProcess::start(const Deadline& deadline)
{
    const SignalBlock block;
    clone();
    if (!waitUntilLeft(deadline))
        return false;
    throwFailure();
    return true;
}

void ChildProcess::clone()
{
    // Not CLONE_VFORK: nothing would end its wait for a program on a device that does not answer.
    // The kernel clears `inUse` at the same moment, and that wait has a deadline.
    const bool shares = m_plan->sharesMemory();
    int pidfd = -1;
    m_plan->inUse() = shares ? 1 : 0;
    const int pid = ::clone(ChildPlan::enter, m_plan->stackTop(),
                            (shares ? CLONE_VM : 0) | CLONE_PIDFD | CLONE_CHILD_CLEARTID | SIGCHLD,
                            m_plan.get(), &pidfd, nullptr, &m_plan->inUse());
    if (pid < 0) {
        m_plan->inUse() = 0;
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    }
    m_pid = pid;
    if (pidfd >= 0)
        m_pidfd = aboveStandard(Descriptor(pidfd));
}

bool ChildProcess::waitUntilLeft(const Deadline& deadline)
{
    const timespec time = deadline.time();
    while (m_plan->inUse() != 0) {
        if (deadline.passed())
            return false;
        syscall(SYS_futex, &m_plan->inUse(), FUTEX_WAIT_BITSET, 1, &time, nullptr,
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

/// Frees the plan, unless a child that cannot be ended still uses it.
void ChildProcess::releasePlan()
{
    if (m_plan->inUse() != 0)
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

/// Looks at the program without waiting. False when it is no child of the host any more; else
/// `status.si_pid` is 0 while it runs.
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
            m_pidfd.reset(); // before kernel 5.4
        else if (errno != EINTR)
            return false;
    }
}

void ChildProcess::signal(int signal)
{
    if (m_pidfd.isOpen() && signalGroupOf(m_pidfd.number(), signal))
        return;
    // The number of a child that nobody has reaped, ended or not, means no other group.
    siginfo_t status;
    const bool numberIsOurs = wait(status, WNOWAIT);
    if (numberIsOurs && ::kill(-m_pid, signal) == 0)
        return;
    // Between clone and setsid the child has no group of its own yet.
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
        poll(&end, 1, deadline.timeout(lookInterval));
    }
    const pid_t group = m_pid;
    takeResult();
    // At worst the number means another group by now, which costs time only.
    while (groupRuns(group) && !deadline.passed())
        poll(nullptr, 0, 1);
}

} // namespace koze_pdk_4_4::runner
