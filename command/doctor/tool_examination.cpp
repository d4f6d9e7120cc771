#include "doctor/tool_examination.h"

#include <utility>

#include <unistd.h>

#include "pdk/include/czeexecpipe.h"
#include "tool_commands.h"

using namespace command;
using koze_pdk_4_4::CZeExecPipeBase;
using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::EZeExecPipe;
using State = Finding::State;

namespace {

/// Far longer than an answer takes, and short enough for somebody who waits for this one.
constexpr unsigned long limitSeconds = 30;

constexpr char devFolder[] = "/dev/";

std::string programOf(const std::string& command)
{
    return command.substr(0, command.find(' '));
}

bool isThere(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

/// The first line with anything but blanks; empty when there is none.
std::string firstWords(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines) {
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            return line;
    }
    return {};
}

std::string ending(int status)
{
    switch (status) {
    case CZeExecPipeBase::boundExceeded:
        return "it printed too much";
    case CZeExecPipeBase::statusUnknown:
        return "its status was lost";
    default:
        if (status > CZeExecPipeBase::killedBySignal)
            return "signal " + std::to_string(status - CZeExecPipeBase::killedBySignal) +
                   " ended it";
        return "status " + std::to_string(status);
    }
}

} // namespace

namespace command {

ToolExamination::ToolExamination(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
                                 FindingReceiver report)
    : m_log(log), m_stop(stop), m_report(std::move(report))
{
    m_support.registerTraceLog(log);
}

void ToolExamination::examineTools()
{
    const std::string adminTool = programOf(nodeQuery({}));
    const std::string diskTool = programOf(rescan({}));
    if (!isThere(adminTool) && !isThere(diskTool)) {
        m_report({State::note, "KoVM",
                  "its tools are not installed: the active path of a native path is that path",
                  ""});
        return;
    }
    m_canAsk = examineTool(adminTool, State::error, "active paths are not looked up");
    examineTool(diskTool, State::warning, "a lookup can neither scan nor remove disks");
}

bool ToolExamination::examineTool(const std::string& tool, State unusable, const char* consequence)
{
    if (m_support.isCommandAvailable("", tool.c_str())) {
        m_report({State::ok, tool, "can be run", ""});
        return true;
    }
    if (isThere(tool))
        m_report({unusable, tool, std::string("may not be executed: ") + consequence,
                  "Run this as root; if it stays so, mend the file's mode: chmod 755 " + tool});
    else
        m_report({unusable, tool, std::string("is missing: ") + consequence,
                  "Install the volume manager's package again."});
    return false;
}

void ToolExamination::examineDisk(const std::string& path)
{
    const std::string disk = CNativePathClaim().removeDevPrefix(path);
    const std::string node = nodeOf(path, disk);
    if (node.empty())
        return;
    const std::string active = activePathOf(path, node);
    if (active.empty())
        return;
    if (isThere(active))
        m_report({State::ok, path, "node " + node + ", active path " + active, ""});
    else
        m_report({State::warning, path,
                  "node " + node + ", active path " + active + ", which does not exist here",
                  "Have the mapping made anew: dmpclaim active --refresh " + path});
}

std::string ToolExamination::nodeOf(const std::string& path, const std::string& disk)
{
    const std::string query = nodeQuery(disk);
    if (!ask(path, query))
        return {};
    std::string node;
    const RunningTool running(m_stop);
    m_support.getKoVMDiskForOSDiskHandler(disk, node);
    if (node.empty())
        m_report({State::warning, path, "no node in the table of: " + query,
                  "Have the disk found again: dmpclaim active " + path});
    return node;
}

std::string ToolExamination::activePathOf(const std::string& path, const std::string& node)
{
    const std::string query = pathQuery(node);
    if (!ask(path, query))
        return {};
    std::string disk;
    const RunningTool running(m_stop);
    m_support.getOSDiskHandleForKoVMDisk(node, disk);
    if (!disk.empty())
        return devFolder + disk;
    m_report({State::warning, path, "no usable path in the table of: " + query,
              "Check the cables and the array; lookups return the path unchanged."});
    return {};
}

/// Returns whether the command succeeded.
bool ToolExamination::ask(const std::string& path, const std::string& command)
{
    if (!m_canAsk)
        return false;
    CZeExecPipePosix runner(1);
    runner.registerTraceLog(m_log);
    Lines output;
    int status = 0;
    try {
        const RunningTool running(m_stop);
        status = runner.Exec(command, output, "", limitSeconds, "", "", "");
    } catch (const EZeExecPipe& error) {
        m_canAsk = false;
        m_report({State::error, programOf(command), error.what(),
                  "Install the volume manager's package again."});
        return false;
    }
    m_stop.check();
    m_commands.push_back({{"command", command}, {"status", status}, {"output", output}});
    if (status != 0)
        tellOfFailure(path, command, status, output);
    return status == 0;
}

void ToolExamination::tellOfFailure(const std::string& path, const std::string& command, int status,
                                    const Lines& output)
{
    if (status == CZeExecPipeBase::deadlinePassed) {
        m_canAsk = false;
        m_report({State::error, programOf(command),
                  "no answer within " + std::to_string(limitSeconds) + " seconds to: " + command,
                  "Find out what it waits for; a lookup waits 600 seconds for each command. "
                  "Nothing more was asked."});
        return;
    }
    const std::string words = firstWords(output);
    m_report({State::warning, path,
              ending(status) + (words.empty() ? "" : ", '" + words + "'") + " from: " + command,
              "If the disk was found a moment ago, scan it: dmpclaim active " + path});
}

} // namespace command
