#include "doctor/tool_checks.h"

#include <climits>
#include <utility>

#include "kernel/file_kind.h"
#include "kovm/command_lines.h"
#include "names/tool_name.h"
#include "pdk/include/czeexecpipe.h"
#include "text/shell_word.h"
#include "text/text.h"
#include "zecmn/ending.h"

using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::EZeExecPipe;
using koze_pdk_4_4::runner::Ending;

namespace command {

namespace {

using State = Finding::State;

/// Far longer than an answer takes, and short enough for a user who waits for doctor.
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

std::string textOf(const Ending& ending)
{
    switch (ending.kind) {
    case Ending::Kind::exited:
        return "status " + std::to_string(ending.number);
    case Ending::Kind::killed:
        return "signal " + std::to_string(ending.number) + " ended it";
    default:
        return "its status was lost";
    }
}

/// No path is so long. exec refuses arguments of 128 KiB, which would look like a fault of the
/// tool.
bool isTooLong(const std::string& name)
{
    return name.size() >= PATH_MAX;
}

/// A dmpclaim command for a shell, with "--" before a path that looks like an option.
std::string ownCommand(const char* subcommand, const std::string& path)
{
    return std::string("dmpclaim ") + subcommand + (startsWith(path, "-") ? " -- " : " ") +
           shellWord(path);
}

/// `remedy` when the path is a disk. When it is a partition, the remedy is to ask about the disk.
std::string diskRemedy(const std::string& path, const std::string& remedy)
{
    unsigned int partnum = 0;
    const std::string disk = CNativePathClaim().removePartitionSuffix(path, partnum);
    if (disk == path)
        return remedy;
    return "The volume manager knows disks, not their partitions. Ask about the disk: " +
           ownCommand("doctor", disk);
}

std::string refreshRemedy(const std::string& path)
{
    return "have the mapping made anew, which removes the node from the volume manager for a "
           "while: " +
           ownCommand("active --refresh", path);
}

} // namespace

ToolChecks::ToolChecks(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
                       FindingReceiver report, std::vector<AskedCommand>* commands)
    : m_log(log), m_stop(stop), m_report(std::move(report)), m_commands(commands)
{}

void ToolChecks::checkTools()
{
    const std::string adminTool = programOf(kovm::nodeQuery({}));
    const std::string diskTool = programOf(kovm::rescan({}));
    if (fileKind(adminTool) == FileKind::none && fileKind(diskTool) == FileKind::none) {
        m_report({State::note, "KoVM",
                  "its tools are not installed: the active path of a native path is that path",
                  ""});
        return;
    }
    m_canAsk = checkTool(adminTool, State::error, "active paths are not looked up");
    checkTool(diskTool, State::warning, "a lookup can neither scan nor remove disks");
}

bool ToolChecks::checkTool(const std::string& tool, State unusable, const char* consequence)
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

void ToolChecks::checkDisk(const std::string& path)
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
        checkPathOf(path, node);
}

std::string ToolChecks::nodeOf(const std::string& path)
{
    const std::string disk = CNativePathClaim().removeDevPrefix(path);
    const Question question{path, kovm::nodeQuery(disk),
                            diskRemedy(path, "Check that the volume manager runs. If the disk "
                                             "was found a moment ago, scan it: " +
                                                 ownCommand("active", path))};
    const std::optional<Lines> answer = answerTo(question);
    if (!answer)
        return {};
    std::string node = kovm::firstNode(*answer).name;
    if (isTooLong(node)) {
        reportNoTable(question, "a node's name that is longer than a path can be");
        return {};
    }
    if (node.empty())
        reportMissingRow(
            question, "no node",
            diskRemedy(path, "Have the disk scanned: " + shellCommand(kovm::rescan({disk}))));
    return node;
}

void ToolChecks::checkPathOf(const std::string& path, const std::string& node)
{
    const Question question{path, kovm::pathQuery(node),
                            "Check that the volume manager runs. If it fails again, " +
                                refreshRemedy(path)};
    const std::optional<Lines> answer = answerTo(question);
    if (!answer)
        return;
    const kovm::Row best = kovm::bestPath(*answer);
    if (best.name.empty()) {
        reportMissingRow(question, "no usable path",
                         "Check the cables and the array; lookups return the path unchanged.");
        return;
    }
    reportPath(path, node, best);
}

void ToolChecks::reportPath(const std::string& path, const std::string& node, const kovm::Row& best)
{
    const std::string active = devFolder + best.name;
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
    else if (!best.isEnabled())
        m_report({State::warning, path, text + ", which is not enabled, as no path of the node is",
                  "Check the cables and the array; lookups return this path all the same."});
    else if (kind == FileKind::none)
        m_report({State::warning, path, text + ", which does not exist here",
                  "If the kernel has no such disk either, " + refreshRemedy(path)});
    else
        m_report({State::ok, path, text, ""});
}

/// The lines of a table. When the command fails or prints none, reports that and returns nothing.
std::optional<ToolChecks::Lines> ToolChecks::answerTo(const Question& question)
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
        m_commands->push_back({question.command, status, output});
    if (status != 0) {
        reportFailure(question, status, output);
        return {};
    }
    const kovm::Fault fault = kovm::faultOf(output);
    if (fault == kovm::Fault::none)
        return output;
    reportNoTable(question, kovm::textOf(fault));
    return {};
}

void ToolChecks::reportFailure(const Question& question, int status, const Lines& output)
{
    const Ending ending = koze_pdk_4_4::runner::endingOf(status);
    if (ending.kind == Ending::Kind::deadlinePassed) {
        giveUp({State::error, programOf(question.command),
                "no answer within " + std::to_string(limitSeconds) + " seconds to:",
                "Find out what it waits for; a lookup waits 600 seconds for each command.",
                question.command});
        return;
    }
    if (ending.kind == Ending::Kind::boundExceeded) {
        giveUp({State::error, programOf(question.command), "too much output from:",
                "Run it by hand and look at what it prints.", question.command});
        return;
    }
    const std::string words = firstWords(output);
    m_report({State::warning, question.path,
              textOf(ending) + (words.empty() ? "" : ", '" + words + "'") + " from:",
              ending.kind == Ending::Kind::exited
                  ? question.remedy
                  : "Run it by hand; the system's log may tell more.",
              question.command});
}

void ToolChecks::reportNoTable(const Question& question, const char* fault)
{
    m_report({State::warning, question.path, fault + std::string(" in the answer to:"),
              "Run it by hand: what lookups can read begins with the header, which holds NAME, "
              "and a rule.",
              question.command});
}

void ToolChecks::reportMissingRow(const Question& question, const std::string& missing,
                                  const std::string& remedy)
{
    m_report(
        {State::warning, question.path, missing + " in the table of:", remedy, question.command});
}

/// Asks nothing more, because the next command would fail in the same way.
void ToolChecks::giveUp(Finding finding)
{
    m_canAsk = false;
    finding.remedy += " Nothing more was asked.";
    m_report(finding);
}

} // namespace command
