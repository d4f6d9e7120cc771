#include "end_tools.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds grace{500};
constexpr std::chrono::seconds limit{2};
constexpr std::chrono::milliseconds lookInterval{5};

/// Whether the process of /proc/`id` is a child of this one and leads a group, as tools do.
///
///     stat = id " (" name ") " state " " parent " " group ...     4711 (kodisk) S 4700 4711 ...
bool isTool(const std::string& id)
{
    std::ifstream file("/proc/" + id + "/stat");
    std::string text;
    std::getline(file, text, '\0');
    const std::size_t nameEnd = text.rfind(')');
    int parent = 0;
    int group = 0;
    return nameEnd != std::string::npos &&
           // NOLINTNEXTLINE(cert-err34-c): the kernel's numbers fit
           std::sscanf(text.c_str() + nameEnd + 1, " %*c %d %d", &parent, &group) == 2 &&
           parent == getpid() && std::to_string(group) == id;
}

std::set<pid_t> toolGroups()
{
    std::set<pid_t> groups;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") == std::string::npos && isTool(name))
            groups.insert(std::stoi(name));
    }
    return groups;
}

bool isGone(pid_t group)
{
    return kill(-group, 0) != 0 && errno == ESRCH;
}

void dropGone(std::set<pid_t>& groups)
{
    for (auto group = groups.begin(); group != groups.end();)
        group = isGone(*group) ? groups.erase(group) : std::next(group);
}

void askToEnd(pid_t group)
{
    kill(-group, SIGTERM);
    kill(-group, SIGCONT); // a stopped process would sleep through it
}

} // namespace

namespace command {

void endTools(const StopRequest& stop)
{
    const Clock::time_point begin = Clock::now();
    std::set<pid_t> groups;
    while ((stop.toolsRun() || !groups.empty()) && Clock::now() - begin < limit) {
        const bool isPatient = Clock::now() - begin < grace;
        for (const pid_t group : toolGroups()) {
            if (groups.insert(group).second && isPatient)
                askToEnd(group);
        }
        if (!isPatient)
            std::for_each(groups.begin(), groups.end(), [](pid_t group) { kill(-group, SIGKILL); });
        std::this_thread::sleep_for(lookInterval);
        dropGone(groups);
    }
}

} // namespace command
