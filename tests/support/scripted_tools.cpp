#include "tests/support/scripted_tools.h"

#include <gtest/gtest.h>

#include <utility>

#include <fcntl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"

namespace {

ScriptedTools* currentTools = nullptr;

} // namespace

ScriptedTools::ScriptedTools()
{
    currentTools = this;
}

ScriptedTools::~ScriptedTools()
{
    EXPECT_TRUE(m_script.empty()) << "never run: " << m_script.front().command;
    currentTools = nullptr;
}

ScriptedTools* ScriptedTools::current()
{
    return currentTools;
}

ScriptedTools& ScriptedTools::answer(std::string command, int status,
                                     std::vector<std::string> lines)
{
    m_script.push_back({std::move(command), status, std::move(lines)});
    return *this;
}

ScriptedTools& ScriptedTools::answer(Reply reply)
{
    m_script.push_back(std::move(reply));
    return *this;
}

int ScriptedTools::run(const std::string& command, std::vector<std::string>& output)
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

namespace koze_pdk_4_4 {

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams)
{
    currentTools->runnerArgument = streams;
    ++currentTools->runners;
    ++currentTools->liveRunners;
}

CZeExecPipePosix::~CZeExecPipePosix()
{
    --currentTools->liveRunners;
}

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& output,
                          const std::string& directory, unsigned long timeLimitSeconds,
                          const std::string& user, const std::string& environment,
                          const std::string& input)
{
    ScriptedTools& tools = *currentTools;
    tools.runnerLog = m_traceLog.get();
    tools.otherArguments = {directory, std::to_string(timeLimitSeconds), user, environment, input};
    return tools.run(command, output);
}

} // namespace koze_pdk_4_4

extern "C" int access(const char* name, int type) noexcept
{
    // Libraries ask before the first test.
    if (currentTools == nullptr)
        return static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, name, type));
    ScriptedTools& tools = *currentTools;
    tools.events.push_back("access " + std::string(name) + " " + std::to_string(type));
    const bool isDenied = type == X_OK && tools.notExecutable.count(name) > 0;
    return tools.installed && tools.missing.count(name) == 0 && !isDenied ? 0 : -1;
}

extern "C" unsigned int sleep(unsigned int seconds)
{
    ScriptedTools& tools = *currentTools;
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
    const ScriptedTools* tools = currentTools;
    if (clock != CLOCK_MONOTONIC || tools == nullptr)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(tools->clock);
    *time = {seconds.count(), (tools->clock - seconds).count()};
    return 0;
}
