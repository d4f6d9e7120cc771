#include "interrupt/end_tools.h"

#include <chrono>
#include <thread>

#include "interrupt/tool_processes.h"

namespace command {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds grace{500};
constexpr std::chrono::seconds limit{2};
constexpr std::chrono::milliseconds pollInterval{5};

} // namespace

bool endTools(const StopRequest& stop)
{
    const Clock::time_point begin = Clock::now();
    ToolProcesses tools;
    for (;;) {
        const Clock::duration passed = Clock::now() - begin;
        const bool toolsRun = stop.toolsRun(); // first: `update` finds what an ended tool left
        tools.update();
        if (!toolsRun && !tools.areAlive())
            return true;
        if (passed >= limit)
            return false;
        if (passed >= grace)
            tools.kill();
        else
            tools.askToEnd();
        std::this_thread::sleep_for(pollInterval);
    }
}

} // namespace command
