#include "end_tools.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds grace{500};
constexpr std::chrono::seconds limit{2};
constexpr std::chrono::milliseconds lookInterval{5};

struct Process {
    pid_t id;
    char state;
    pid_t parent;
    pid_t group;

    bool isChild() const { return parent == getpid(); }
    bool leadsGroup() const { return group == id; }

    /// A zombie has ended, though its parent may never look.
    bool isAlive() const { return state != 'Z' && state != 'X'; }
};

/// What /proc/ID/stat tells; nothing when the process has gone.
///
///     stat = id " (" name ") " state " " parent " " group ...     4711 (kodisk) S 4700 4711 ...
std::optional<Process> readProcess(const std::filesystem::path& folder)
{
    std::ifstream file(folder / "stat");
    std::string text;
    std::getline(file, text, '\0');
    const std::size_t nameEnd = text.rfind(')');
    Process process{};
    // NOLINTBEGIN(cert-err34-c): the kernel's numbers fit
    if (nameEnd == std::string::npos || std::sscanf(text.c_str(), "%d", &process.id) != 1 ||
        std::sscanf(text.c_str() + nameEnd + 1, " %c %d %d", &process.state, &process.parent,
                    &process.group) != 3)
        return std::nullopt;
    // NOLINTEND(cert-err34-c)
    return process;
}

/// Whether /proc shows processes by the numbers that this one knows them by.
bool isProcUsable()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self", error) == std::to_string(getpid());
}

/// Nothing when /proc is not usable: the same numbers would mean other processes.
std::vector<Process> allProcesses()
{
    std::vector<Process> processes;
    if (!isProcUsable())
        return processes;
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        if (const std::optional<Process> process = readProcess(entry->path()))
            processes.push_back(*process);
    }
    return processes;
}

/// Adds the groups of tools to `known`, and returns those of all known ones that are alive.
std::set<pid_t> aliveGroups(std::set<pid_t>& known, const std::set<pid_t>& others)
{
    std::set<pid_t> alive;
    const std::vector<Process> processes = allProcesses();
    for (const Process& process : processes) {
        if (process.isChild() && process.leadsGroup() && others.count(process.id) == 0)
            known.insert(process.group);
    }
    for (const Process& process : processes) {
        if (process.isAlive() && known.count(process.group) > 0)
            alive.insert(process.group);
    }
    return alive;
}

void askToEnd(pid_t group)
{
    kill(-group, SIGTERM);
    kill(-group, SIGCONT); // a stopped process would sleep through it
}

} // namespace

namespace command {

std::set<pid_t> childProcesses()
{
    std::set<pid_t> children;
    for (const Process& process : allProcesses()) {
        if (process.isChild())
            children.insert(process.id);
    }
    return children;
}

bool endTools(const StopRequest& stop, const std::set<pid_t>& others)
{
    const Clock::time_point begin = Clock::now();
    std::set<pid_t> known;
    std::set<pid_t> asked;
    for (;;) {
        const Clock::duration passed = Clock::now() - begin;
        const std::set<pid_t> alive = aliveGroups(known, others);
        if (!stop.toolsRun() && alive.empty())
            return true;
        if (passed >= limit)
            return false;
        for (const pid_t group : alive) {
            if (passed >= grace)
                kill(-group, SIGKILL);
            else if (asked.insert(group).second)
                askToEnd(group);
        }
        std::this_thread::sleep_for(lookInterval);
    }
}

} // namespace command
