#include "interrupt/tool_processes.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include <unistd.h>

#include "files/names_in.h"

namespace command {

namespace {

/// Whether /proc belongs to the process namespace of this process, so that both use the same
/// numbers. NSpid lists the numbers of a process in the namespace of /proc and in those below it:
///
///     NSpid: 4711          the same namespace
///     NSpid: 4711 1        the /proc of a host, read by the first process of a container
bool isProcUsable()
{
    const std::string wanted = "NSpid:\t" + std::to_string(getpid());
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line == wanted)
            return true;
    }
    return false;
}

/// The numbers among the names in a folder of /proc; none when it cannot be read.
std::vector<pid_t> numbersIn(const char* folder)
{
    std::vector<pid_t> numbers;
    for (const std::string& name : namesIn(folder)) {
        pid_t number = 0;
        const char* end = name.data() + name.size();
        if (std::from_chars(name.data(), end, number).ptr == end)
            numbers.push_back(number);
    }
    return numbers;
}

/// The processes that a thread of this process started, and has not reaped.
std::set<pid_t> childrenOf(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/children");
    std::set<pid_t> children;
    for (pid_t child = 0; file >> child;)
        children.insert(child);
    return children;
}

/// The session of a process; 0 when there is no such process.
///
///     /proc/ID/stat = id " (" name ") " state " " parent " " group " " session ...
///                     4711 (kodisk) S 4700 4711 4711 ...
pid_t sessionOf(pid_t id)
{
    std::ifstream file("/proc/" + std::to_string(id) + "/stat");
    std::string text;
    std::getline(file, text, '\0');
    std::istringstream behindName(text.substr(text.rfind(')') + 1)); // the name may hold anything
    char state = 0;
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    behindName >> state >> parent >> group >> session;
    return session;
}

/// Checks the number last: if the process still has it, the session was read from this process.
bool isIn(pid_t session, const HeldProcess& process)
{
    return sessionOf(process.id()) == session && process.hasNumber();
}

} // namespace

ToolProcesses::~ToolProcesses()
{
    for (const Session& session : m_sessions) {
        for (const Process& process : session) {
            if (process.isStopped)
                process.held.send(SIGCONT);
        }
    }
}

void ToolProcesses::update()
{
    m_hasMissed = false;
    if (!isProcUsable())
        return;
    for (const pid_t thread : numbersIn("/proc/self/task")) {
        if (thread != getpid())
            addTools(thread);
    }
    if (!m_sessions.empty())
        addMembers();
}

void ToolProcesses::addTools(pid_t thread)
{
    for (const pid_t child : childrenOf(thread)) {
        if (isKnownTool(child))
            continue;
        HeldProcess tool(child);
        m_hasMissed |= !tool.isHeld() && errno != ESRCH;
        // Listed again: a child that was reaped before the pidfd was opened may have lost its
        // number to another process.
        if (tool.isHeld() && childrenOf(thread).count(child) > 0)
            m_sessions.emplace_back().push_back({std::move(tool)});
    }
}

void ToolProcesses::addMembers()
{
    for (const pid_t id : numbersIn("/proc")) {
        const pid_t sessionId = sessionOf(id);
        Session* session = sessionWith(sessionId);
        if (session == nullptr || holds(*session, id))
            continue;
        HeldProcess process(id);
        m_hasMissed |= !process.isHeld() && errno != ESRCH;
        if (process.isHeld() && isIn(sessionId, process) && isOurs(*session))
            session->push_back({std::move(process)});
    }
}

bool ToolProcesses::isKnownTool(pid_t id) const
{
    return std::any_of(m_sessions.begin(), m_sessions.end(), [id](const Session& session) {
        return session.front().held.id() == id && session.front().held.hasNumber();
    });
}

/// Null when there is none.
ToolProcesses::Session* ToolProcesses::sessionWith(pid_t id)
{
    const auto found =
        std::find_if(m_sessions.begin(), m_sessions.end(),
                     [id](const Session& session) { return session.front().held.id() == id; });
    return found == m_sessions.end() ? nullptr : &*found;
}

bool ToolProcesses::holds(const Session& session, pid_t id)
{
    return std::any_of(session.begin(), session.end(), [id](const Process& process) {
        return process.held.id() == id && process.held.hasNumber();
    });
}

/// Whether the session's number still means the tool's session. The kernel does not reuse the
/// number of a session or of a process group that has members.
bool ToolProcesses::isOurs(const Session& session)
{
    const HeldProcess& tool = session.front().held;
    return tool.groupHasMembers() ||
           std::any_of(session.begin(), session.end(),
                       [&](const Process& process) { return isIn(tool.id(), process.held); });
}

bool ToolProcesses::areAlive() const
{
    const auto isAlive = [](const Process& process) { return process.held.isAlive(); };
    return m_hasMissed ||
           std::any_of(m_sessions.begin(), m_sessions.end(), [&](const Session& session) {
               return std::any_of(session.begin(), session.end(), isAlive);
           });
}

/// Whether an earlier call has stopped the process; stops it otherwise.
bool ToolProcesses::wasStopped(Process& process)
{
    if (std::exchange(process.isStopped, true))
        return true;
    process.held.send(SIGSTOP);
    return false;
}

void ToolProcesses::askToEnd()
{
    for (Session& session : m_sessions) {
        for (Process& process : session) {
            if (process.isAsked || !wasStopped(process))
                continue;
            process.held.send(SIGTERM);
            process.held.send(SIGCONT);
            process.isAsked = true;
            process.isStopped = false;
        }
    }
}

void ToolProcesses::kill()
{
    for (Session& session : m_sessions) {
        for (Process& process : session) {
            if (wasStopped(process))
                process.held.send(SIGKILL);
        }
    }
}

} // namespace command
