#ifndef TESTS_SUPPORT_SCRIPTED_TOOLS_H
#define TESTS_SUPPORT_SCRIPTED_TOOLS_H

// Replaces the framework's command runner, `access`, `sleep` and the monotonic clock of the whole
// process. Include it in the one source file of a test program.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"

/// What the volume manager's tools answer: a script of commands in their order. A command that is
/// not the next one of the script fails the test, as does a command that was never run.
class ScriptedTools {
public:
    struct Reply {
        std::string command;
        int status;
        std::vector<std::string> lines;
        /// Runs after the lines were delivered; may throw.
        std::function<void()> last = [] {};
    };

    ScriptedTools() { current() = this; }
    ScriptedTools(const ScriptedTools&) = delete;
    ScriptedTools& operator=(const ScriptedTools&) = delete;
    ~ScriptedTools()
    {
        EXPECT_TRUE(m_script.empty()) << "never run: " << m_script.front().command;
        current() = nullptr;
    }

    ScriptedTools& answer(std::string command, int status, std::vector<std::string> lines = {})
    {
        m_script.push_back({std::move(command), status, std::move(lines)});
        return *this;
    }

    ScriptedTools& answer(Reply reply)
    {
        m_script.push_back(std::move(reply));
        return *this;
    }

    int run(const std::string& command, std::vector<std::string>& output)
    {
        if (m_script.empty() || m_script.front().command != command) {
            ADD_FAILURE() << "unexpected command: [" << command << "]";
            return 127;
        }
        const Reply reply = std::move(m_script.front());
        m_script.pop_front();
        events.push_back(command);
        output.insert(output.end(), reply.lines.begin(), reply.lines.end());
        reply.last();
        return reply.status;
    }

    /// The tools under test; null outside a test.
    static ScriptedTools*& current()
    {
        static ScriptedTools* tools = nullptr;
        return tools;
    }

    /// All calls, in order: command lines, "access PATH MODE", "sleep SECONDS".
    std::vector<std::string> events;
    /// The answers of `access`: whether all files exist and are executable or none does, and the
    /// exceptions.
    bool installed = true;
    std::set<std::string> missing;
    std::set<std::string> notExecutable;
    /// How much of each of the next sleeps is left when it returns, as if a signal interrupted it.
    /// Later sleeps are not interrupted.
    std::deque<std::chrono::milliseconds> sleepsLeaveOver;
    /// The time between the end of a sleep and its return.
    std::chrono::seconds afterSleep{};
    /// The monotonic clock; only sleeps move it.
    std::chrono::nanoseconds clock{};
    int runners = 0;
    int liveRunners = 0;
    int runnerArgument = 0;
    koze_pdk_4_4::CZeTraceLog* runnerLog = nullptr;
    std::vector<std::string> otherArguments;

private:
    std::deque<Reply> m_script;
};

// These definitions are in a header because each test program has one source file.
// NOLINTBEGIN(misc-definitions-in-headers)
namespace koze_pdk_4_4 {

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams)
{
    ScriptedTools::current()->runnerArgument = streams;
    ++ScriptedTools::current()->runners;
    ++ScriptedTools::current()->liveRunners;
}

CZeExecPipePosix::~CZeExecPipePosix()
{
    --ScriptedTools::current()->liveRunners;
}

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& output,
                          const std::string& directory, unsigned long timeLimitSeconds,
                          const std::string& user, const std::string& environment,
                          const std::string& input)
{
    ScriptedTools& tools = *ScriptedTools::current();
    tools.runnerLog = m_traceLog.get();
    tools.otherArguments = {directory, std::to_string(timeLimitSeconds), user, environment, input};
    return tools.run(command, output);
}

} // namespace koze_pdk_4_4

extern "C" int access(const char* name, int type) noexcept
{
    // Libraries ask before the first test.
    if (ScriptedTools::current() == nullptr)
        return static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, name, type));
    ScriptedTools& tools = *ScriptedTools::current();
    tools.events.push_back("access " + std::string(name) + " " + std::to_string(type));
    const bool isDenied = type == X_OK && tools.notExecutable.count(name) > 0;
    return tools.installed && tools.missing.count(name) == 0 && !isDenied ? 0 : -1;
}

extern "C" unsigned int sleep(unsigned int seconds)
{
    ScriptedTools& tools = *ScriptedTools::current();
    tools.events.push_back("sleep " + std::to_string(seconds));
    std::chrono::milliseconds left{};
    if (!tools.sleepsLeaveOver.empty()) {
        left = tools.sleepsLeaveOver.front();
        tools.sleepsLeaveOver.pop_front();
    }
    tools.clock += std::chrono::seconds(seconds) - left + tools.afterSleep;
    return static_cast<unsigned int>(left / std::chrono::seconds(1));
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const ScriptedTools* tools = ScriptedTools::current();
    if (clock != CLOCK_MONOTONIC || tools == nullptr)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(tools->clock);
    *time = {seconds.count(), (tools->clock - seconds).count()};
    return 0;
}
// NOLINTEND(misc-definitions-in-headers)

#endif
