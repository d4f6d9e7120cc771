#ifndef INTERRUPT_TOOL_PROCESSES_H
#define INTERRUPT_TOOL_PROCESSES_H

#include <vector>

#include <sys/types.h>

#include "interrupt/held_process.h"

namespace command {

/// The tools that this process runs, and what they have started in their sessions.
///
/// Tools are the children of all threads but the main one: the kernel keeps apart which thread
/// started a child. The main thread starts none. Its children were there before this program was
/// executed, or were inherited from processes that ended, which happens to the first process of a
/// container and to a subreaper. The runner gives each tool a session of its own.
///
/// Numbers of processes are only used to find them. What is signalled is held by a pidfd, and was
/// seen to be wanted while it was held.
class ToolProcesses {
public:
    ToolProcesses() = default;
    ToolProcesses(const ToolProcesses&) = delete;
    ToolProcesses& operator=(const ToolProcesses&) = delete;

    /// Lets processes run on that were stopped and got no signal yet.
    ~ToolProcesses();

    /// Looks for tools, and for processes in the sessions of all tools found so far. Finds nothing
    /// where /proc is missing, belongs to another process namespace or does not list the children
    /// of threads (CONFIG_PROC_CHILDREN).
    void update();

    /// Whether a process that was found has not ended, or one could not be held.
    bool areAlive() const;

    // The next two stop a process first, and signal it when they are called again. In between,
    // `update` finds what the process has started. Otherwise that could lose its last trace when
    // the process ends, for a session's number alone may mean another session by then.

    /// Sends SIGTERM, once to each process, and lets it run on.
    void askToEnd();

    /// Sends SIGKILL.
    void kill();

private:
    struct Process {
        HeldProcess held;
        bool isStopped = false;
        bool isAsked = false;
    };

    /// The processes of a session. The first is the tool, which leads it.
    using Session = std::vector<Process>;

    void addTools(pid_t thread);
    void addMembers();
    bool isKnownTool(pid_t id) const;
    Session* sessionWith(pid_t id);
    static bool holds(const Session& session, pid_t id);
    static bool isOurs(const Session& session);
    static bool wasStopped(Process& process);

    std::vector<Session> m_sessions;
    bool m_hasMissed = false;
};

} // namespace command

#endif
