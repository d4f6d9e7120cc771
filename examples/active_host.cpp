// A host that asks for active paths, shows what is waited for, and goes on when its time is up.
//
// usage: active_host SECONDS PATH...

#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "providers/device/scsitool/dmp_claim_manager.h"

using namespace koze_pdk_4_4;

namespace {

/// Shows commands that are started, warnings and failures.
void show(int level, std::string_view text)
{
    if (level <= 2 || text.find("ExecuteCommand command") == 0)
        std::cerr << "  " << text << '\n';
}

/// The active path, found on a thread with a manager and a log of its own: neither may be shared.
std::string activePathOf(const std::string& path)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(3, show));
    CDmpClaimManager manager;
    manager.registerTraceLog(log);
    CDmpDeviceClaimBase* owner = nullptr;
    if (manager.getClaimModule(owner, path) == CLAIM_NONE)
        return path;
    return owner->getActivePath(path, true);
}

/// The active path; `path` itself when that is not known within `budget`.
std::string activePathWithin(std::chrono::seconds budget, const std::string& path)
{
    auto answer = std::make_shared<std::promise<std::string>>();
    std::future<std::string> future = answer->get_future();
    std::thread([answer, path] {
        try {
            answer->set_value(activePathOf(path));
        } catch (...) {
            answer->set_exception(std::current_exception());
        }
    }).detach();
    return future.wait_for(budget) == std::future_status::ready ? future.get() : path;
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 3) {
        std::cerr << "usage: active_host SECONDS PATH...\n";
        return 2;
    }
    const std::chrono::seconds budget(std::atoi(arguments[1]));
    for (int i = 2; i < count; ++i)
        std::cout << arguments[i] << ": " << activePathWithin(budget, arguments[i]) << std::endl;
    std::_Exit(0); // A lookup that is late still runs, and must not see what exit() destroys.
}
