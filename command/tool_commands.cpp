#include "tool_commands.h"

#include <functional>

#include "pdk/include/czetracesink.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "trace_event.h"

namespace {

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

} // namespace

namespace command {

std::string nodeQuery(const std::string& disk)
{
    return commandOf([&](CKoDMPSupport& support) {
        std::string node;
        support.getKoVMDiskForOSDiskHandler(disk, node);
    });
}

std::string pathQuery(const std::string& node)
{
    return commandOf([&](CKoDMPSupport& support) {
        std::string disk;
        support.getOSDiskHandleForKoVMDisk(node, disk);
    });
}

std::string removal(const std::string& node)
{
    return commandOf([&](CKoDMPSupport& support) { support.removeDisksFromKoVM(node); });
}

std::string rescan(const std::vector<std::string>& disks)
{
    return commandOf([&](CKoDMPSupport& support) { support.kovmScanDisks(disks); });
}

} // namespace command
