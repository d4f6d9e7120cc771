#ifndef TESTS_SUPPORT_SCRIPTED_TOOLS_H
#define TESTS_SUPPORT_SCRIPTED_TOOLS_H

#include <chrono>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "pdk/include/czetracelog.h"

/// What the volume manager's tools answer: a script of commands in their order. A command that is
/// not the next one of the script fails the test, as does a command that was never run.
///
/// A test program that links scripted_tools replaces the framework's command runner, `access`,
/// `sleep` and the monotonic clock.
class ScriptedTools {
public:
    struct Reply {
        std::string command;
        int status;
        std::vector<std::string> lines;
        /// Runs after the lines were delivered; may throw.
        std::function<void()> last = [] {};
    };

    ScriptedTools();
    ScriptedTools(const ScriptedTools&) = delete;
    ScriptedTools& operator=(const ScriptedTools&) = delete;
    ~ScriptedTools();

    ScriptedTools& answer(std::string command, int status, std::vector<std::string> lines = {});
    ScriptedTools& answer(Reply reply);

    int run(const std::string& command, std::vector<std::string>& output);

    /// The tools under test; null outside a test.
    static ScriptedTools* current();

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

#endif
