#include "doctor/tool_examination.h"

#include <climits>
#include <utility>

#include "doctor/file_kind.h"
#include "pdk/include/czeexecpipe.h"
#include "shell_word.h"
#include "text.h"
#include "tool_commands.h"
#include "tool_name.h"

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
    if (status == CZeExecPipeBase::statusUnknown)
        return "its status was lost";
    if (status > CZeExecPipeBase::killedBySignal)
        return "signal " + std::to_string(status - CZeExecPipeBase::killedBySignal) + " ended it";
    return "status " + std::to_string(status);
}

/// Whether no path is so long. The system starts no tool with an argument of 128 KiB: that would
/// look like a fault of the tool.
bool isTooLong(const std::string& name)
{
    return name.size() >= PATH_MAX;
}

/// A command of this program, for a shell. A path may look like an option.
std::string ownCommand(const char* subcommand, const std::string& path)
{
    return std::string("dmpclaim ") + subcommand + (startsWith(path, "-") ? " -- " : " ") +
           shellWord(path);
}

/// `path` is a partition's or a disk's; `remedy` is for a disk.
std::string helpFor(const std::string& path, const std::string& remedy)
{
    unsigned int partnum = 0;
    const std::string disk = CNativePathClaim().removePartitionSuffix(path, partnum);
    if (disk == path)
        return remedy;
    return "The volume manager knows disks, not their partitions. Ask about the disk: " +
           ownCommand("doctor", disk);
}

/// Also says what it costs.
std::string refreshing(const std::string& path)
{
    return "have the mapping made anew, which removes the node from the volume manager for a "
           "while: " +
           ownCommand("active --refresh", path);
}

} // namespace

namespace command {

ToolExamination::ToolExamination(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
                                 FindingReceiver report, Row* commands)
    : m_log(log), m_stop(stop), m_report(std::move(report)), m_commands(commands)
{}

void ToolExamination::examineTools()
{
    const std::string adminTool = programOf(nodeQuery({}));
    const std::string diskTool = programOf(rescan({}));
    if (fileKind(adminTool) == FileKind::none && fileKind(diskTool) == FileKind::none) {
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
    CKoDMPSupport support;
    support.registerTraceLog(m_log);
    const bool mayBeExecuted = support.isCommandAvailable("", tool.c_str());
    const FileKind kind = fileKind(tool);
    if (kind == FileKind::none)
        m_report({unusable, tool, std::string("is missing: ") + consequence,
                  "Install the volume manager's package again."});
    else if (kind != FileKind::regular)
        m_report({unusable, tool, "is no file: lookups cannot run it",
                  "Move it away, and install the volume manager's package again."});
    else if (!mayBeExecuted)
        m_report({unusable, tool, std::string("may not be executed: ") + consequence,
                  "Run this as root; if it stays so, mend the file's mode: chmod 755 " + tool});
    else
        m_report({State::ok, tool, "can be run", ""});
    return mayBeExecuted && kind == FileKind::regular;
}

void ToolExamination::examineDisk(const std::string& path)
{
    if (!m_canAsk)
        return;
    if (const char* reason = whyNotAsked(path)) {
        m_report({State::error, path,
                  std::string("the volume manager is not asked about it: ") + reason,
                  "Check the name; 'active' refuses it, too."});
        return;
    }
    if (isTooLong(path)) {
        m_report({State::error, path,
                  "the volume manager is not asked about it: it is longer than a path can be",
                  "Check the name."});
        return;
    }
    const std::string node = nodeOf(path);
    if (!node.empty())
        examinePathOf(path, node);
}

std::string ToolExamination::nodeOf(const std::string& path)
{
    const std::string disk = CNativePathClaim().removeDevPrefix(path);
    const Question question{path, nodeQuery(disk),
                            helpFor(path, "Check that the volume manager runs. If the disk "
                                          "was found a moment ago, scan it: " +
                                              ownCommand("active", path))};
    const std::optional<Lines> answer = answerTo(question);
    if (!answer)
        return {};
    TableReading reading = readNode(*answer);
    if (isTooLong(reading.name))
        reading = {"a node's name that is longer than a path can be", "", false};
    if (reading.name.empty())
        tellOfNothing(question, reading.fault, "no node",
                      helpFor(path, "Have the disk scanned: " + shellCommand(rescan({disk}))));
    return reading.name;
}

void ToolExamination::examinePathOf(const std::string& path, const std::string& node)
{
    const Question question{path, pathQuery(node),
                            "Check that the volume manager runs. If it fails again, " +
                                refreshing(path)};
    const std::optional<Lines> answer = answerTo(question);
    if (!answer)
        return;
    const TableReading reading = readPath(*answer);
    if (reading.name.empty()) {
        tellOfNothing(question, reading.fault, "no usable path",
                      "Check the cables and the array; lookups return the path unchanged.");
        return;
    }
    const std::string active = devFolder + reading.name;
    const std::string text = "node " + node + ", active path " + active;
    const FileKind kind = fileKind(active);
    if (const char* reason = whyNotUsed(active))
        m_report({State::error, path, text + ", which is not to be used: " + reason,
                  "Find out why the volume manager names it; lookups return it all the same."});
    else if (kind != FileKind::blockDevice && kind != FileKind::none)
        m_report(
            {State::error, path, text + ", which is no block device here",
             "Move that away, for it may hold what was meant for the disk." +
                 (active == path ? "" : " For its node, ask: " + ownCommand("doctor", active))});
    else if (!reading.isEnabled)
        m_report({State::warning, path, text + ", which is not enabled, as no path of the node is",
                  "Check the cables and the array; lookups return this path all the same."});
    else if (kind == FileKind::none)
        m_report({State::warning, path, text + ", which does not exist here",
                  "If the kernel has no such disk either, " + refreshing(path)});
    else
        m_report({State::ok, path, text, ""});
}

/// Returns nothing when the command failed.
std::optional<ToolExamination::Lines> ToolExamination::answerTo(const Question& question)
{
    CZeExecPipePosix runner(1);
    runner.registerTraceLog(m_log);
    Lines output;
    int status = 0;
    try {
        const RunningTool running(m_stop);
        status = runner.Exec(question.command, output, "", limitSeconds, "", "", "");
    } catch (const EZeExecPipe& error) {
        giveUp({State::error, programOf(question.command), error.what(),
                "Mend that; a damaged tool comes back with the volume manager's package."});
        return {};
    }
    m_stop.check();
    if (m_commands != nullptr)
        m_commands->push_back(
            {{"command", question.command}, {"status", status}, {"output", output}});
    if (status == 0)
        return output;
    tellOfFailure(question, status, output);
    return {};
}

void ToolExamination::tellOfFailure(const Question& question, int status, const Lines& output)
{
    if (status == CZeExecPipeBase::deadlinePassed) {
        giveUp({State::error, programOf(question.command),
                "no answer within " + std::to_string(limitSeconds) + " seconds to:",
                "Find out what it waits for; a lookup waits 600 seconds for each command.",
                question.command});
        return;
    }
    if (status == CZeExecPipeBase::boundExceeded) {
        giveUp({State::error, programOf(question.command), "too much output from:",
                "Run it by hand and look at what it prints.", question.command});
        return;
    }
    const std::string words = firstWords(output);
    m_report({State::warning, question.path,
              ending(status) + (words.empty() ? "" : ", '" + words + "'") + " from:",
              status < CZeExecPipeBase::killedBySignal
                  ? question.remedy
                  : "Run it by hand; the system's log may tell more.",
              question.command});
}

/// `remedy` is for a table that lacks the row.
void ToolExamination::tellOfNothing(const Question& question, const char* fault,
                                    const std::string& missing, const std::string& remedy)
{
    if (fault == nullptr)
        m_report({State::warning, question.path, missing + " in the table of:", remedy,
                  question.command});
    else
        m_report({State::warning, question.path, fault + std::string(" in the answer to:"),
                  "Run it by hand: what lookups can read begins with the header, which holds NAME, "
                  "and a rule.",
                  question.command});
}

/// For failures that would come again.
void ToolExamination::giveUp(Finding finding)
{
    m_canAsk = false;
    finding.advice += " Nothing more was asked.";
    m_report(finding);
}

} // namespace command
