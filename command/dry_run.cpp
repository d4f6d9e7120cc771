#include "dry_run.h"

#include <functional>

#include "device_row.h"
#include "pdk/include/czetracesink.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "trace_event.h"

namespace {

using command::Row;

constexpr char placeholder[] = "NODE";

/// A command line that was about to run.
struct NotRun {
    std::string command;
};

/// The command line that `operation` would run first, as the library builds it: the line that
/// announces it is where the operation ends.
std::string commandOf(const std::function<void(CKoDMPSupport&)>& operation)
{
    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    log->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(
        koze_pdk_4_4::CZeTraceSink::everything, [](int level, std::string_view text) {
            const command::TraceEvent event = command::traceEvent(level, text);
            if (event.kind == command::TraceEvent::Kind::toolStarts)
                throw NotRun{std::string(event.command)};
        }));
    CKoDMPSupport support;
    support.registerTraceLog(log);
    try {
        operation(support);
    } catch (const NotRun& found) {
        return found.command;
    }
    return {};
}

std::string nodeQuery(const std::string& disk)
{
    return commandOf([&](CKoDMPSupport& support) {
        std::string node;
        support.getKoVMDiskForOSDiskHandler(disk, node);
    });
}

std::string pathQuery()
{
    return commandOf([](CKoDMPSupport& support) {
        std::string disk;
        support.getOSDiskHandleForKoVMDisk(placeholder, disk);
    });
}

std::string removal()
{
    return commandOf([](CKoDMPSupport& support) { support.removeDisksFromKoVM(placeholder); });
}

std::string rescan(const std::vector<std::string>& disks)
{
    return commandOf([&](CKoDMPSupport& support) { support.kovmScanDisks(disks); });
}

struct Step {
    std::string command;
    const char* when;
};

constexpr char finding[] = "when the node was found";

std::vector<Step> waitingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first; up to 4 times until it succeeds"},
            {rescan({disk}), "5 seconds after each failure of the line above"},
            {pathQuery(), finding}};
}

std::vector<Step> refreshingSteps(const std::string& disk)
{
    return {{nodeQuery(disk), "first"},
            {removal(), "when the line above succeeded"},
            {rescan({}), "before each of the following"},
            {nodeQuery(disk), "up to 4 times until it succeeds, 10 seconds after each failure"},
            {pathQuery(), finding}};
}

} // namespace

namespace command {

std::vector<Row> dryRun(CDmpClaimManager& manager, const std::string& path, bool refresh)
{
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, path);
    const Row device{{"name", path}, {"owner", ownerField(owner)}};
    std::vector<Row> rows;
    const auto add = [&](const Row& commandLine, const std::string& when) {
        rows.push_back(device);
        rows.back()["command"] = commandLine;
        rows.back()["when"] = when;
    };
    if (dynamic_cast<const CNativePathClaim*>(owner) == nullptr) {
        add(nullptr, "never: only a native path is looked up");
        return rows;
    }
    const std::string disk = owner->removeDevPrefix(path);
    const std::string condition =
        CKoDMPSupport().isKoDMPInstalled() ? "" : "if the tools were installed: ";
    for (const Step& step : refresh ? refreshingSteps(disk) : waitingSteps(disk))
        add(step.command, condition + step.when);
    return rows;
}

} // namespace command
