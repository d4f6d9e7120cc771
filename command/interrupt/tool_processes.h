#ifndef INTERRUPT_TOOL_PROCESSES_H
#define INTERRUPT_TOOL_PROCESSES_H

#include <vector>

#include <sys/types.h>

#include "interrupt/held_process.h"

namespace command {

/// The tools that this process runs, and what they have started in their sessions.
///
/// Tools are the children of all threads but the main one: the kernel lists children by the thread
/// that started them. The main thread starts no tools. Its children are from before exec, or were
/// inherited from processes that ended, as by the first process of a container and by a subreaper.
/// The runner gives each tool a session of its own.
///
/// Process numbers serve to find processes only. A process is signalled through a pidfd, and was
/// checked while the pidfd held it.
class ToolProcesses {
public:
    ToolProcesses() = default;
    ToolProcesses(const ToolProcesses&) = delete;
    ToolProcesses& operator=(const ToolProcesses&) = delete;

    /// Sends SIGCONT to processes that are still stopped.
    ~ToolProcesses();

    /// Finds tools, and the processes in the sessions of all tools found so far. Finds nothing
    /// where /proc is missing, belongs to another process namespace or does not list the children
    /// of threads (CONFIG_PROC_CHILDREN).
    void update();

    /// Whether a process that was found is alive, or no pidfd could be opened for one.
    bool areAlive() const;

    // The first call of the next two stops a process, the next call signals it. In between,
    // `update` finds what the stopped process has started. Afterwards it could not: when the last
    // known process of a session has ended, the session's number may have been reused.

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
