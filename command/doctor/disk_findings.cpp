#include "doctor/disk_findings.h"

#include <algorithm>
#include <set>
#include <string>

#include "kernel/file_kind.h"
#include "kovm/command_lines.h"
#include "multipath/node_paths.h"
#include "names/tool_name.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "text/shell_word.h"
#include "text/text.h"
#include "text/word_list.h"

namespace command {

namespace {

using Outcome = DiskAnswer::Outcome;

constexpr char devFolder[] = "/dev/";

/// A dmpclaim command for a shell, with "--" before a path that looks like an option.
std::string ownCommand(const char* subcommand, const std::string& path)
{
    return std::string("dmpclaim ") + subcommand + (startsWith(path, "-") ? " -- " : " ") +
           shellWord(path);
}

/// How a failure that keeps disks from being examined is reported.
struct Failure {
    Outcome outcome;
    Code code;
    const char* advice;
};

constexpr Failure failures[] = {
    {Outcome::refused, Code::toolFailed, "Check that the volume manager runs, and run it by hand."},
    {Outcome::failed, Code::toolFailed, "Run it by hand; the system's log may tell more."},
    {Outcome::unreadable, Code::toolUnreadable,
     "Run it by hand: what lookups can read begins with the header, which holds NAME, and a rule."},
    {Outcome::hangs, Code::toolHangs,
     "Find out what it waits for; a lookup waits 600 seconds for each command."},
    {Outcome::floods, Code::toolFloods, "Run it by hand and look at what it prints."},
    {Outcome::notRun, Code::toolNotRun,
     "Mend that; a damaged tool comes back with the volume manager's package."},
    {Outcome::noNode, Code::noDiskHeld,
     "Have them scanned, unless the volume manager is not to "
     "hold them."}};

/// REQUIRES: the outcome is one of `failures`.
const Failure& failureOf(Outcome outcome)
{
    return *std::find_if(std::begin(failures), std::end(failures),
                         [&](const Failure& failure) { return failure.outcome == outcome; });
}

/// Tool and subcommand: "/usr/sbin/kodmpadm getdmpnode".
std::string questionOf(const std::string& command)
{
    const std::size_t tool = command.find(' ');
    const std::size_t begin = command.find_first_not_of(' ', tool);
    return command.substr(0, tool) + ' ' + command.substr(begin, command.find(' ', begin) - begin);
}

/// Disks that could not be examined, all for the same reason. They share one finding.
struct FailedDisks {
    const DiskAnswer* first;
    std::vector<std::string> disks;

    bool takes(const DiskAnswer& answer) const
    {
        return first->outcome == answer.outcome && first->status == answer.status &&
               questionOf(first->command) == questionOf(answer.command);
    }
};

bool seemsUnknown(const DiskAnswer& answer)
{
    return answer.outcome == Outcome::noNode || answer.outcome == Outcome::refused;
}

class DiskFindings {
public:
    DiskFindings(const std::vector<DiskAnswer>& answers, bool knowsOthers,
                 const FindingReceiver& report)
        : m_knowsOthers(knowsOthers), m_report(report)
    {
        for (const DiskAnswer& answer : answers) {
            if (answer.outcome != Outcome::answered)
                continue;
            kovm::RowReader reader(answer.pathTable);
            for (kovm::Row row; reader.next(row);)
                m_held.insert(row.name);
        }
    }

    void take(const DiskAnswer& answer)
    {
        if (answer.outcome == Outcome::answered)
            reportPath(answer);
        else if (answer.outcome == Outcome::misnamed)
            m_report({Code::nameNotAsked, answer.path,
                      "the volume manager is not asked about it: " + answer.reason,
                      "Check the name; 'active' refuses it, too."});
        else if (isNotHeld(answer))
            m_report(
                {Code::diskNotHeld, answer.path,
                 "the volume manager does not hold it (" + questionOf(answer.command) + ' ' +
                     answer.reason + "), as it holds other disks",
                 "Have it scanned, unless it is a local disk.",
                 shellCommand(kovm::rescan({CNativePathClaim().removeDevPrefix(answer.path)}))});
        else if (answer.outcome == Outcome::notAsked)
            m_notAsked.push_back(answer.path);
        else
            addFailure(answer);
    }

    void finish()
    {
        for (FailedDisks& failed : m_failed) {
            if (failed.first->mustBeLast())
                failed.disks.insert(failed.disks.end(), m_notAsked.begin(), m_notAsked.end());
            reportFailure(failed);
        }
    }

private:
    /// A disk that is a path of a node is held, whatever the tool answers for it.
    bool isNotHeld(const DiskAnswer& answer) const
    {
        const std::string disk = CNativePathClaim().removeDevPrefix(answer.path);
        return m_knowsOthers && seemsUnknown(answer) && m_held.count(disk) == 0;
    }

    void addFailure(const DiskAnswer& answer)
    {
        const auto found = std::find_if(m_failed.begin(), m_failed.end(),
                                        [&](const FailedDisks& one) { return one.takes(answer); });
        if (found == m_failed.end())
            m_failed.push_back({&answer, {answer.path}});
        else
            found->disks.push_back(answer.path);
    }

    void reportFailure(const FailedDisks& failed)
    {
        const Failure& failure = failureOf(failed.first->outcome);
        const std::string& command = failed.first->command;
        const std::string disks = counted(failed.disks.size(), "disk");
        const bool isToolAtFault = failure.code != Code::noDiskHeld;
        m_report({failure.code, questionOf(command),
                  failed.first->reason + (isToolAtFault ? "; it kept " : " for ") + disks +
                      (isToolAtFault ? " from being examined: " : ": ") + joined(failed.disks),
                  failure.advice, shellCommand(isToolAtFault ? command : kovm::rescan({}))});
    }

    /// The disk's node and the path that the library would return for it.
    void reportPath(const DiskAnswer& answer)
    {
        const kovm::Row best = kovm::bestPath(answer.pathTable);
        if (!best.isEnabled())
            return; // its node has no path, which is a finding of its own
        const std::string active = devFolder + best.name;
        const std::string text = "node " + answer.node + ", active path " + active;
        const FileKind kind = fileKind(active);
        if (const char* reason = whyNotUsed(active))
            m_report({Code::activePathRefused, answer.path,
                      text + ", which is not to be used: " + reason,
                      "Find out why the volume manager names it; lookups return it all the same."});
        else if (kind != FileKind::blockDevice && kind != FileKind::none)
            m_report({Code::activePathNoDevice, answer.path,
                      text + ", which is no block device here",
                      "Move that away, for it may hold what was meant for the disk.",
                      "mv -n -- " + shellWord(active) + " /root/"});
        else if (kind == FileKind::none)
            m_report({Code::activePathMissing, answer.path, text + ", which does not exist here",
                      "If the kernel has no such disk either, have the mapping made anew, which "
                      "removes the node from the volume manager for a while.",
                      ownCommand("active --refresh", answer.path)});
        else
            m_report({Code::activePath, answer.path, text});
    }

    const bool m_knowsOthers;
    const FindingReceiver& m_report;
    std::set<std::string> m_held; // the names of all paths
    std::vector<FailedDisks> m_failed;
    std::vector<std::string> m_notAsked;
};

} // namespace

bool holdsAny(const std::vector<DiskAnswer>& answers)
{
    return std::any_of(answers.begin(), answers.end(),
                       [](const DiskAnswer& answer) { return answer.isKnown(); });
}

bool mayBeUnknown(const std::vector<DiskAnswer>& answers)
{
    return std::any_of(answers.begin(), answers.end(), seemsUnknown);
}

void reportAnswers(const std::vector<DiskAnswer>& answers, bool knowsOthers,
                   const FindingReceiver& report)
{
    DiskFindings findings(answers, knowsOthers, report);
    for (const DiskAnswer& answer : answers)
        findings.take(answer);
    findings.finish();
}

std::vector<MultipathDisk> nodesOf(const Inventory& inventory,
                                   const std::vector<DiskAnswer>& answers)
{
    std::set<std::string> known;
    std::vector<MultipathDisk> nodes;
    for (const DiskAnswer& answer : answers) {
        if (answer.outcome == Outcome::answered && known.insert(answer.node).second)
            nodes.push_back(examined(nodePaths(inventory, answer)));
    }
    return nodes;
}

} // namespace command
