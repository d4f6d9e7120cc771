#include "doctor/tool_files.h"

#include <string>

#include "kernel/file_kind.h"
#include "kovm/command_lines.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "text/shell_word.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace command {

namespace {

struct Tool {
    std::string path;
    Code unusable;
    const char* consequence;
};

std::string programOf(const std::string& command)
{
    return command.substr(0, command.find(' '));
}

void reportUnusable(const Tool& tool, FileKind kind, const FindingReceiver& report)
{
    if (kind == FileKind::none)
        report({tool.unusable, tool.path, std::string("is missing: ") + tool.consequence,
                "Install the volume manager's package again."});
    else if (kind != FileKind::regular)
        report({tool.unusable, tool.path, "is no file: lookups cannot run it",
                "Move it away, and install the volume manager's package again."});
    else
        report({tool.unusable, tool.path, std::string("may not be executed: ") + tool.consequence,
                "Run this as root; if it stays so, mend the file's mode.",
                "chmod 755 " + shellWord(tool.path)});
}

bool checkTool(const Tool& tool, const CZeTraceLogHandle& log, const FindingReceiver& report)
{
    CKoDMPSupport support;
    support.registerTraceLog(log);
    const bool mayBeExecuted = support.isCommandAvailable("", tool.path.c_str());
    const FileKind kind = fileKind(tool.path);
    const bool isUsable = mayBeExecuted && kind == FileKind::regular;
    if (isUsable)
        report({Code::toolReady, tool.path, "can be run"});
    else
        reportUnusable(tool, kind, report);
    return isUsable;
}

} // namespace

bool checkTools(const CZeTraceLogHandle& log, const FindingReceiver& report)
{
    const Tool lookupTool{programOf(kovm::nodeQuery({})), Code::lookupToolUnusable,
                          "active paths are not looked up"};
    const Tool scanTool{programOf(kovm::rescan({})), Code::scanToolUnusable,
                        "a lookup can neither scan nor remove disks"};
    if (fileKind(lookupTool.path) == FileKind::none && fileKind(scanTool.path) == FileKind::none) {
        report({Code::noVolumeManager, "KoVM",
                "its tools are not installed: the active path of a native path is that path"});
        return false;
    }
    const bool canAsk = checkTool(lookupTool, log, report);
    checkTool(scanTool, log, report);
    return canAsk;
}

} // namespace command
