#ifndef CHILD_PROCESS_H
#define CHILD_PROCESS_H

#include <memory>
#include <utility>

#include <sys/types.h>
#include <sys/wait.h>

#include "child_plan.h"
#include "deadline.h"
#include "descriptor.h"

namespace koze_pdk_4_4::runner {

/// A program that we have started. It leads a session and a process group of its own, and cannot
/// leave either.
///
/// The host may wait for children too, of its own or of every kind, so nothing here waits for any
/// child but this one, and no signal is sent by a number that may mean another process by now.
class ChildProcess {
public:
    explicit ChildProcess(std::unique_ptr<ChildPlan> plan) : m_plan(std::move(plan)) {}
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Ends what is still running, as `kill` does.
    ~ChildProcess();

    /// Starts the program. False when the deadline passes first; a std::system_error when there is
    /// no child to be had or it cannot start the program. A child with a copy of the host's memory
    /// is not waited for: `reap` says that it could not start the program. Call it once, and first.
    bool start(const Deadline& deadline);

    /// Readable when the program has ended; -1 on kernels that have no such descriptor.
    int descriptor() const { return m_pidfd.number(); }

    /// Whether the program has ended. It keeps its number.
    bool ended();

    /// The result of the ended program, as CZeExecPipeBase::Exec returns it; gives its number up. A
    /// std::system_error when it could not be started.
    int reap();

    /// Sends `signal` to the program and its process group.
    void signal(int signal);

    /// Ends the whole group by SIGKILL, reaps the program and sees the others off. Gives up after
    /// a second: a process that waits for a dead device is beyond any signal.
    void kill();

private:
    void clone();
    bool waitUntilLeft(const Deadline& deadline);
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
