#ifndef ZECMN_CHILD_PROCESS_H
#define ZECMN_CHILD_PROCESS_H

#include <memory>
#include <utility>

#include <sys/types.h>
#include <sys/wait.h>

#include "child_plan.h"
#include "deadline.h"
#include "descriptor.h"

namespace koze_pdk_4_4::runner {

/// A started program. It leads a session and a process group of its own, and cannot leave either.
///
/// The host may reap any child at any time, this one included, and may have children of its own. So
/// this class waits for no other child, and sends no signal by an id that the kernel may have
/// reused.
class ChildProcess {
public:
    explicit ChildProcess(std::unique_ptr<ChildPlan> plan) : m_plan(std::move(plan)) {}
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Kills the process group, see `kill`.
    ~ChildProcess();

    /// Starts the program. Returns false when the deadline passes first. Throws std::system_error
    /// when clone fails or the child cannot execute the program; of a child with a copy of the
    /// host's memory `reap` throws the latter. REQUIRES: called once, before all other functions.
    bool start(const Deadline& deadline);

    /// The pidfd: readable when the program has ended; -1 on kernels without pidfds.
    int descriptor() const { return m_pidfd.number(); }

    /// Whether the program has ended. Does not reap it, so that its process id stays reserved.
    bool ended();

    /// Reaps the ended program and returns its result as CZeExecPipeBase::Exec does. Throws
    /// std::system_error when the program could not be executed.
    int reap();

    /// Sends `signal` to the program and its process group.
    void signal(int signal);

    /// Sends SIGKILL to the process group, reaps the program and waits until the rest of the group
    /// has ended. Gives up after a second: a process that waits for a dead device cannot be killed.
    void kill();

private:
    void createProcess();
    bool waitUntilUnshared(const Deadline& deadline);
    void throwFailure() const;
    void releasePlan();
    int takeResult();
    bool wait(siginfo_t& status, int options);
    void awaitEnd(const Deadline& deadline);

    std::unique_ptr<ChildPlan> m_plan;
    Descriptor m_pidfd;
    pid_t m_pid = 0;
};

} // namespace koze_pdk_4_4::runner

#endif
