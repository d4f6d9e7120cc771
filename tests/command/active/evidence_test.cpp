#include "active/evidence.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using command::Evidence;
using Code = command::Outcome::Code;

struct TraceLine {
    int level;
    std::string text;
};

using Lines = std::vector<TraceLine>;

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Lines nodeQuery{{3, "ExecuteCommand command: /usr/sbin/kodmpadm   getdmpnode  nodename=sdc"}};
const Lines rescan{{3, "ExecuteCommand command: /usr/sbin/kodisk   scandisks  device=sdc"}};
const Lines exit{{6, "Exiting Function executeCommand [1, dmp_nativepath_claim.cpp]"}};

Lines pathQuery(const std::string& node)
{
    return {{3, "ExecuteCommand command: /usr/sbin/kodmpadm   getsubpaths  dmpnodename=" + node}};
}

Lines prints(const std::string& output)
{
    return Lines{{6, "ExecuteCommand passed with output '" + output + "'"}} + exit;
}

Lines fails(const std::string& message, int number)
{
    return Lines{{2, "Warning - failed with message='" + message + "' and error no '" +
                         std::to_string(number) + "'."}} +
           exit;
}

const Lines cannotRun =
    Lines{{1, "ExecuteCommand - exception thrown in command execution."}} + exit;
const Lines noOutput = exit + Lines{{2, "Warning - no output of command."}};
const Lines headerNotFirst =
    prints("note NAME") + Lines{{2, "Warning - no valid output of command."}};
const Lines found{{6, "Got active path [/dev/sdb]."}};
const Lines foundNode = nodeQuery + prints("NAME STATE===arr0_17 ENABLED");
const Lines namesPath = prints("NAME STATE===sdb ENABLED(A)") + found;

struct Case {
    Lines lines;
    Code code;
    std::string reason;
};

const Case cases[] = {
    {{}, Code::notInstalled, "/usr/sbin/kodmpadm is missing, or may not be executed"},
    {foundNode, Code::notFound,
     "the volume manager does not know sdc: no node in the answer of kodmpadm getdmpnode"},
    {foundNode + pathQuery("arr0_17") + namesPath, Code::confirmed,
     "the volume manager names /dev/sdb for node arr0_17"},
    {foundNode + pathQuery("arr0_17") + prints("NAME===sdb DISABLED PRIMARY") + found, Code::noPath,
     "no path of node arr0_17 is enabled; /dev/sdb is the first primary one"},
    {foundNode + pathQuery("arr0_17") + prints("NAME==="), Code::noPath,
     "no path of node arr0_17 can be used"},
    {foundNode + pathQuery("arr0_17") + prints("sdb ENABLED(A)"), Code::noTable,
     "no header in the answer of kodmpadm getsubpaths"},
    {foundNode + pathQuery("arr0_17") + noOutput, Code::noTable,
     "no table in the answer of kodmpadm getsubpaths"},
    {foundNode + pathQuery("arr0_17") + fails("ERROR", 1), Code::notFound,
     "the volume manager does not know node arr0_17, which it named for sdc: kodmpadm getsubpaths "
     "ended with status 1, 'ERROR'"},
    {foundNode + pathQuery("arr0_17") + fails("x", 1100), Code::toolFailed,
     "kodmpadm getsubpaths took more than 600 seconds"},
    {nodeQuery + fails("", 1), Code::notFound,
     "the volume manager does not know sdc: kodmpadm getdmpnode ended with status 1"},
    {nodeQuery + fails("", 2), Code::toolFailed, "kodmpadm getdmpnode ended with status 2"},
    {nodeQuery + fails("x", 1009), Code::toolFailed, "kodmpadm getdmpnode was ended by signal 9"},
    {nodeQuery + fails("x", 1101), Code::toolFailed, "kodmpadm getdmpnode printed too much"},
    {nodeQuery + fails("x", 1102), Code::toolFailed,
     "kodmpadm getdmpnode ended, and its status was lost"},
    {nodeQuery + cannotRun, Code::toolFailed, "kodmpadm getdmpnode could not be run"},
    {nodeQuery + noOutput, Code::noTable, "no table in the answer of kodmpadm getdmpnode"},
    {nodeQuery + headerNotFirst, Code::noTable,
     "a line before the header in the answer of kodmpadm getdmpnode"},
};

TEST(Evidence, TellsHowTheLookupEndedAndWhy)
{
    for (const Case& lookup : cases) {
        Evidence evidence;
        for (const TraceLine& line : lookup.lines)
            evidence.take(command::traceEvent(line.level, line.text));
        const command::Outcome outcome = evidence.outcome("sdc", "/dev/sdb");
        EXPECT_EQ(outcome.reason, lookup.reason);
        EXPECT_EQ(outcome.code, lookup.code) << lookup.reason;
    }
}

command::Outcome outcomeOf(const Lines& lines)
{
    Evidence evidence;
    for (const TraceLine& line : lines)
        evidence.take(command::traceEvent(line.level, line.text));
    return evidence.outcome("sdc", "/dev/sdb");
}

TEST(Evidence, WithoutANodeThePathThatIsNamedIsNotConfirmed)
{
    const Lines named = pathQuery("") + namesPath;
    EXPECT_EQ(outcomeOf(nodeQuery + prints("arr0_17 ENABLED") + named).code, Code::noTable);
    EXPECT_EQ(outcomeOf(nodeQuery + prints("NAME===") + named).code, Code::notFound);
}

TEST(Evidence, TheLastAttemptCounts)
{
    EXPECT_EQ(
        outcomeOf(nodeQuery + fails("", 3) + rescan + prints("") + nodeQuery + fails("", 1)).code,
        Code::notFound);
    EXPECT_EQ(outcomeOf(nodeQuery + fails("", 3) + foundNode + pathQuery("a") + namesPath).code,
              Code::confirmed);
}

TEST(Evidence, OtherToolsDoNotCount)
{
    EXPECT_EQ(outcomeOf(nodeQuery + fails("", 1) + rescan + fails("broken", 6)).code,
              Code::notFound);
    EXPECT_EQ(outcomeOf(foundNode + rescan + fails("broken", 6) + pathQuery("a") + namesPath).code,
              Code::confirmed);
}

TEST(Evidence, AReasonHoldsTheBeginningOfALongMessage)
{
    const std::string reason = outcomeOf(nodeQuery + fails(std::string(5000, 'x'), 3)).reason;
    EXPECT_EQ(reason,
              "kodmpadm getdmpnode ended with status 3, '" + std::string(160, 'x') + "...'");
}

TEST(Outcome, EveryCodeHasItsWord)
{
    const std::pair<Code, const char*> words[] = {
        {Code::confirmed, "confirmed"}, {Code::noPath, "no-path"},
        {Code::noTable, "no-table"},    {Code::toolFailed, "tool-failed"},
        {Code::notFound, "not-found"},  {Code::notInstalled, "not-installed"},
        {Code::notAsked, "not-asked"},  {Code::notClaimed, "not-claimed"},
        {Code::timedOut, "timed-out"},
    };
    for (const auto& [code, word] : words) {
        EXPECT_EQ(markOf(code).text, word);
        EXPECT_EQ((command::Outcome{code, ""}.isGood()),
                  code == Code::confirmed || code == Code::notAsked);
    }
}

} // namespace
