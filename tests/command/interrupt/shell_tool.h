#ifndef TESTS_COMMAND_INTERRUPT_SHELL_TOOL_H
#define TESTS_COMMAND_INTERRUPT_SHELL_TOOL_H

#include <atomic>
#include <string>
#include <thread>

#include <sys/types.h>

#include "interrupt/stop_request.h"

/// Whether no process of the session is left. Zombies do not count: their parents reap them.
bool isSessionGone(pid_t wanted);

/// A shell that the runner runs in a thread, as the workers of the command run tools. Its script
/// calls `ready`, which the constructor waits for.
class ShellTool {
public:
    ShellTool(command::StopRequest& stop, const std::string& script);
    ShellTool(const ShellTool&) = delete;
    ShellTool& operator=(const ShellTool&) = delete;
    ~ShellTool();

    pid_t id() const { return m_id; }
    bool isReaped() const { return m_status != unknown; }

    /// Whether no process of the tool's session is left, after a second at most: the kernel takes a
    /// moment to end what was killed.
    bool isSessionGone() const;

    /// The runner's result once it has reaped the tool; -1 when that takes more than ten seconds.
    int status() const;

private:
    static constexpr int unknown = -1;

    pid_t m_id = -1;
    std::atomic<int> m_status{unknown};
    std::thread m_thread;
};

/// Runs a tool that ends and leaves a sleeper running, which `starter` has started. Returns the
/// sleeper once this process has inherited it, as a subreaper or first process of its namespace.
pid_t inheritedSleeper(const std::string& starter);

#endif
