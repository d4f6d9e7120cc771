// What doctor asks the volume manager's tools, and what it makes of their answers.
#include "doctor/tool_checks.h"

#include <gmock/gmock.h>

#include "doctor/finding_output.h"
#include "tests/support/scripted_tools.h"
#include "text/shell_word.h"

#include <cerrno>
#include <map>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// The modes that stat(2) reports for these paths. Other tools are files, and other paths in /dev
/// are block devices. ScriptedTools says which are missing.
std::map<std::string, mode_t>& scriptedModes()
{
    static std::map<std::string, mode_t> modes;
    return modes;
}

} // namespace

extern "C" int stat(const char* name, struct stat* file) noexcept
{
    const std::string path = name;
    const bool isTool = path.rfind("/usr/sbin/", 0) == 0;
    ScriptedTools* tools = ScriptedTools::current();
    if (tools == nullptr || (!isTool && path.rfind("/dev/", 0) != 0))
        return fstatat(AT_FDCWD, name, file, 0);
    tools->events.push_back("stat " + path);
    if (!tools->installed || tools->missing.count(path) > 0) {
        errno = ENOENT;
        return -1;
    }
    const auto mode = scriptedModes().find(path);
    const mode_t usual = isTool ? S_IFREG : S_IFBLK;
    *file = {};
    file->st_mode = mode == scriptedModes().end() ? usual : mode->second;
    return 0;
}

namespace {

using command::Finding;
using koze_pdk_4_4::CZeExecPipeBase;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char nodeQuery[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char pathQuery[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";

const std::vector<std::string> nodeTable{"NAME       STATE      GROUP    PATHS",
                                         "====", "arr0_17    ENABLED    arr0     2"};
const std::vector<std::string> pathTable{"NAME    STATE    TYPE    CTLR",
                                         "====", "sdb     ENABLED(A)    PRIMARY    c1"};

class ToolChecks : public testing::Test {
protected:
    ToolChecks() { scriptedModes().clear(); }

    void check(const std::vector<std::string>& paths)
    {
        m_checks.checkTools();
        for (const std::string& path : paths)
            m_checks.checkDisk(path);
    }

    const std::vector<command::AskedCommand>& commands() const { return m_commands; }

    /// "STATE SUBJECT: TEXT" for each finding after those about the tools.
    std::vector<std::string> findings() const
    {
        std::vector<std::string> lines;
        for (const Finding& finding : m_findings) {
            if (finding.text != "can be run")
                lines.push_back(std::string(command::stateName(finding.state)) + ' ' +
                                finding.subject + ": " + finding.text +
                                (finding.command.empty() ? "" : " ") +
                                command::shellCommand(finding.command));
        }
        return lines;
    }

    const Finding& last() const { return m_findings.back(); }

    command::StopRequest stop;
    ScriptedTools tools;

private:
    std::vector<Finding> m_findings;
    std::vector<command::AskedCommand> m_commands;
    command::ToolChecks m_checks{
        {}, stop, [this](const Finding& finding) { m_findings.push_back(finding); }, &m_commands};
};

TEST_F(ToolChecks, ToolsThatCanBeRunAreToldOf)
{
    std::vector<Finding> found;
    const auto take = [&](const Finding& finding) { found.push_back(finding); };
    command::ToolChecks({}, stop, take, nullptr).checkTools();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].subject, "/usr/sbin/kodmpadm");
    EXPECT_EQ(found[1].subject, "/usr/sbin/kodisk");
    for (const Finding& finding : found) {
        EXPECT_EQ(finding.state, Finding::State::ok);
        EXPECT_EQ(finding.text, "can be run");
        EXPECT_EQ(finding.remedy, "");
    }
    EXPECT_THAT(tools.events, Contains("access /usr/sbin/kodmpadm 1"));
}

TEST_F(ToolChecks, WithoutTheToolsNothingIsAsked)
{
    tools.installed = false;
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("note KoVM: its tools are not installed: the active path "
                                        "of a native path is that path"));
    EXPECT_THAT(tools.events, Contains("stat /usr/sbin/kodmpadm"));
}

TEST_F(ToolChecks, WhatIsNoFileIsNoTool)
{
    scriptedModes() = {{"/usr/sbin/kodmpadm", S_IFDIR}, {"/usr/sbin/kodisk", S_IFBLK}};
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("error /usr/sbin/kodmpadm: is no file: lookups cannot run it",
                            "warning /usr/sbin/kodisk: is no file: lookups cannot run it"));
    EXPECT_THAT(last().remedy, StartsWith("Move it away"));
}

TEST_F(ToolChecks, AnAdministrationToolThatMayNotBeExecutedIsAnError)
{
    tools.notExecutable = {"/usr/sbin/kodmpadm"};
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error /usr/sbin/kodmpadm: may not be executed: active "
                                        "paths are not looked up"));
}

TEST_F(ToolChecks, AMissingAdministrationToolIsAnErrorBesideTheOther)
{
    tools.missing = {"/usr/sbin/kodmpadm"};
    tools.notExecutable = tools.missing;
    check({"/dev/sdc"});
    EXPECT_THAT(
        findings(),
        ElementsAre("error /usr/sbin/kodmpadm: is missing: active paths are not looked up"));
}

TEST_F(ToolChecks, AMissingDiskToolIsAWarningAndDisksAreAskedAbout)
{
    tools.missing = {"/usr/sbin/kodisk"};
    tools.answer(nodeQuery, 1);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), Contains("warning /usr/sbin/kodisk: is missing: a lookup can neither "
                                     "scan nor remove disks"));
}

TEST_F(ToolChecks, EachQuestionIsAskedOnceAndItsTableKept)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("ok /dev/sdc: node arr0_17, active path /dev/sdb"));
    ASSERT_EQ(commands().size(), 2U);
    EXPECT_EQ(commands()[0].command, nodeQuery);
    EXPECT_EQ(commands()[0].status, 0);
    EXPECT_EQ(commands()[0].output, nodeTable);
    EXPECT_EQ(commands()[1].command, pathQuery);
    EXPECT_EQ(commands()[1].output, pathTable);
}

TEST_F(ToolChecks, TheRunnerTracesAndTakesStandardOutputOnly)
{
    const koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    command::ToolChecks checks(
        log, stop, [](const Finding&) {}, nullptr);
    checks.checkTools();
    tools.answer(nodeQuery, 1);
    checks.checkDisk("/dev/sdc");
    EXPECT_EQ(tools.runnerArgument, 1);
    EXPECT_EQ(tools.runnerLog, log.get());
    EXPECT_EQ(tools.liveRunners, 0);
}

TEST_F(ToolChecks, AnActivePathThatDoesNotExistIsAWarning)
{
    tools.missing = {"/dev/sdb"};
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("warning /dev/sdc: node arr0_17, active path /dev/sdb, "
                                        "which does not exist here"));
    EXPECT_THAT(last().remedy, HasSubstr("dmpclaim active --refresh /dev/sdc"));
}

TEST_F(ToolChecks, AnActivePathThatIsNoBlockDeviceIsAnError)
{
    scriptedModes() = {{"/dev/sdb", S_IFREG}};
    for (const char* state : {"ENABLED(A)", "DISABLED"}) {
        tools.answer(nodeQuery, 0, nodeTable);
        tools.answer(pathQuery, 0, {"NAME", "====", std::string("sdb ") + state + " PRIMARY c1"});
        check({"/dev/sdc"});
        EXPECT_EQ(findings().back(), "error /dev/sdc: node arr0_17, active path /dev/sdb, which is "
                                     "no block device here");
        EXPECT_THAT(last().remedy, AllOf(StartsWith("Move that away"), EndsWith(" /dev/sdb")));
    }
    scriptedModes() = {{"/dev/sdc", S_IFREG}};
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "sdc ENABLED(A) PRIMARY c1"});
    check({"/dev/sdc"});
    EXPECT_THAT(last().remedy, AllOf(StartsWith("Move that away"), Not(HasSubstr("doctor"))));
}

TEST_F(ToolChecks, ATableWithoutANodeIsAWarning)
{
    tools.answer(nodeQuery, 0, {"NAME", "===="});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre(std::string("warning /dev/sdc: no node in the table of: ") +
                                        nodeQuery));
}

TEST_F(ToolChecks, ATableWithoutAUsablePathIsAWarning)
{
    const std::vector<std::string> lines{"NAME", "====", "sdb DISABLED SECONDARY c1"};
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, lines);
    check({"/dev/sdc"});
    EXPECT_THAT(
        findings(),
        ElementsAre(std::string("warning /dev/sdc: no usable path in the table of: ") + pathQuery));
}

TEST_F(ToolChecks, AFailureIsAWarningThatTellsWhatTheToolSaid)
{
    tools.answer(nodeQuery, 1, {"", " \t\r", "ERROR sdc is not found", "more"});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("warning /dev/sdc: status 1, 'ERROR sdc is not found' "
                                        "from: " +
                                        std::string(nodeQuery)));
    EXPECT_EQ(commands()[0].status, 1);
    EXPECT_EQ(commands()[0].output.size(), 4U);
}

TEST_F(ToolChecks, EachEndingHasItsWords)
{
    const std::pair<int, const char*> endings[] = {
        {255, "status 255 from:"},
        {CZeExecPipeBase::killedBySignal + 9, "signal 9 ended it from:"},
        {CZeExecPipeBase::statusUnknown, "its status was lost from:"}};
    for (const auto& [status, words] : endings) {
        tools.answer(nodeQuery, status);
        check({"/dev/sdc"});
        EXPECT_EQ(last().text, words);
        EXPECT_EQ(last().command, nodeQuery);
    }
}

TEST_F(ToolChecks, AFailureForANodeIsToldOfItsDisk)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 3);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre(std::string("warning /dev/sdc: status 3 from: ") + pathQuery));
}

TEST_F(ToolChecks, EachDiskIsAskedAbout)
{
    tools.answer(nodeQuery, 1);
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=sdd", 1);
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(), ElementsAre(StartsWith("warning /dev/sdc: status 1"),
                                        StartsWith("warning /dev/sdd: status 1")));
}

TEST_F(ToolChecks, AToolThatHangsIsNotAskedAgain)
{
    tools.answer(nodeQuery, CZeExecPipeBase::deadlinePassed);
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(), ElementsAre("error /usr/sbin/kodmpadm: no answer within 30 seconds "
                                        "to: " +
                                        std::string(nodeQuery)));
    EXPECT_EQ(tools.otherArguments, (std::vector<std::string>{"", "30", "", "", ""}));
    EXPECT_THAT(last().remedy, EndsWith(" Nothing more was asked."));
    EXPECT_EQ(commands()[0].status, 1100);
}

TEST_F(ToolChecks, AToolThatCannotBeRunIsNotAskedAgain)
{
    tools.answer(
        {nodeQuery, 0, {}, [] { throw koze_pdk_4_4::EZeExecPipe("no such interpreter"); }});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(), ElementsAre("error /usr/sbin/kodmpadm: no such interpreter"));
    EXPECT_THAT(last().remedy, HasSubstr("the volume manager's package"));
    EXPECT_THAT(commands(), IsEmpty());
    EXPECT_FALSE(stop.toolsRun());
}

TEST_F(ToolChecks, AFloodingToolIsNotAskedAgain)
{
    tools.answer(nodeQuery, CZeExecPipeBase::boundExceeded, {"NAME"});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(
        findings(),
        ElementsAre(std::string("error /usr/sbin/kodmpadm: too much output from: ") + nodeQuery));
    EXPECT_EQ(commands()[0].status, 1101);
}

TEST_F(ToolChecks, APathThatIsNotEnabledIsAWarning)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "sdb DISABLED PRIMARY c1"});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("warning /dev/sdc: node arr0_17, active path /dev/sdb, "
                                        "which is not enabled, as no path of the node is"));
}

TEST_F(ToolChecks, AnAnswerThatIsNoTableIsAWarning)
{
    tools.answer(nodeQuery, 0, {"note", "NAME", "====", "arr0_17"});
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0);
    check({"/dev/sdc", "/dev/sdc"});
    EXPECT_THAT(
        findings(),
        ElementsAre(std::string("warning /dev/sdc: a line before the header in the answer "
                                "to: ") +
                        nodeQuery,
                    std::string("warning /dev/sdc: no table in the answer to: ") + pathQuery));
    EXPECT_THAT(last().remedy, StartsWith("Run it by hand"));
}

TEST_F(ToolChecks, TheRemedyDependsOnWhatFailed)
{
    tools.answer(nodeQuery, 1);
    check({"/dev/sdc"});
    EXPECT_THAT(last().remedy, EndsWith("scan it: dmpclaim active /dev/sdc"));
    tools.answer(nodeQuery, 0, {"NAME", "===="});
    check({"/dev/sdc"});
    EXPECT_THAT(last().remedy, EndsWith("scanned: /usr/sbin/kodisk   scandisks  device=sdc"));
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 1);
    check({"/dev/sdc"});
    EXPECT_THAT(last().remedy, AllOf(HasSubstr("removes the node"),
                                     EndsWith("dmpclaim active --refresh /dev/sdc")));
    for (const int status : {CZeExecPipeBase::killedBySignal + 1, CZeExecPipeBase::statusUnknown}) {
        tools.answer(nodeQuery, status);
        check({"/dev/sdc"});
        EXPECT_THAT(last().remedy, StartsWith("Run it by hand"));
    }
}

TEST_F(ToolChecks, AFailureMayBeThatOfTheWholeVolumeManager)
{
    for (const int status : {1, 2, 255}) {
        tools.answer(nodeQuery, status);
        check({"/dev/sdc"});
        EXPECT_THAT(last().remedy, AllOf(StartsWith("Check that the volume manager runs. If "),
                                         EndsWith("scan it: dmpclaim active /dev/sdc")));
        tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, status);
        check({"/dev/sdc"});
        EXPECT_THAT(last().remedy, AllOf(StartsWith("Check that the volume manager runs. If "),
                                         EndsWith("dmpclaim active --refresh /dev/sdc")));
    }
}

TEST_F(ToolChecks, WhoAsksAboutAPartitionIsToldToAskAboutTheDisk)
{
    const std::string query = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc12";
    tools.answer(query, 1);
    check({"/dev/sdc12"});
    EXPECT_THAT(last().remedy, EndsWith("Ask about the disk: dmpclaim doctor /dev/sdc"));
    tools.answer(query, 0, {"NAME", "===="});
    check({"/dev/sdc12"});
    EXPECT_THAT(last().remedy, EndsWith("Ask about the disk: dmpclaim doctor /dev/sdc"));
}

TEST_F(ToolChecks, ARemedyMayBePastedIntoAShell)
{
    const std::string node = "/usr/sbin/kodmpadm   getdmpnode  nodename=sd$(x)";
    tools.answer(node, 1);
    check({"/dev/sd$(x)"});
    EXPECT_THAT(last().remedy, EndsWith("dmpclaim active '/dev/sd$(x)'"));
    tools.answer(node, 0, {"NAME", "===="});
    check({"/dev/sd$(x)"});
    EXPECT_THAT(last().remedy, EndsWith("scandisks  'device=sd$(x)'"));
    tools.answer(node, 0, nodeTable).answer(pathQuery, 1);
    check({"/dev/sd$(x)"});
    EXPECT_THAT(last().remedy, EndsWith("--refresh '/dev/sd$(x)'"));
}

TEST_F(ToolChecks, ANameThatTheToolsWouldMisreadIsNotAskedAbout)
{
    check({"/dev/sdc force=yes"});
    EXPECT_THAT(findings(),
                ElementsAre("error /dev/sdc force=yes: the volume manager is not asked about it: "
                            "it holds a space, which separates the arguments of the volume "
                            "manager's tools"));
    EXPECT_THAT(commands(), IsEmpty());
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc,sdd", "/dev/sdc"});
    EXPECT_THAT(findings().back(), StartsWith("ok /dev/sdc: "));
}

TEST_F(ToolChecks, AnActivePathThatLeavesDevIsAnError)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "../etc/shadow ENABLED(A) PRIMARY c1"});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("error /dev/sdc: node arr0_17, active path /dev/../etc/shadow, which "
                            "is not to be used: it leaves /dev"));
}

TEST_F(ToolChecks, TheCommandsThatAreShownMayBePastedIntoAShell)
{
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=sd$(x)", 1);
    check({"/dev/sd$(x)"});
    EXPECT_THAT(findings().back(), EndsWith(" from: /usr/sbin/kodmpadm   getdmpnode  "
                                            "'nodename=sd$(x)'"));
    tools.answer(nodeQuery, 0, {"NAME", "====", "$(x)"});
    tools.answer("/usr/sbin/kodmpadm   getsubpaths  dmpnodename=$(x)", 0, {"NAME", "===="});
    check({"/dev/sdc"});
    EXPECT_THAT(findings().back(), EndsWith(" of: /usr/sbin/kodmpadm   getsubpaths  "
                                            "'dmpnodename=$(x)'"));
}

TEST_F(ToolChecks, APathThatLooksLikeAnOptionIsAdvisedAsAPath)
{
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=--trace-file=/dev/sdc", 1);
    check({"--trace-file=/dev/sdc"});
    EXPECT_THAT(last().remedy, EndsWith(": dmpclaim active -- --trace-file=/dev/sdc"));
}

TEST_F(ToolChecks, ANameThatIsTooLongForAToolIsNoFaultOfTheTool)
{
    const std::string longest = "/dev/sd" + std::string(4088, 'x');
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=" + longest.substr(5), 1);
    tools.answer(nodeQuery, 1);
    check({"/dev/sd" + std::string(200'000, 'x'), longest + 'x', longest, "/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre(EndsWith("xxx: the volume manager is not asked about it: it is longer "
                                     "than a path can be"),
                            EndsWith("it is longer than a path can be"),
                            StartsWith("warning " + longest + ": status 1 from: "),
                            StartsWith("warning /dev/sdc: status 1 from: ")));
}

TEST_F(ToolChecks, ANodesNameThatIsTooLongForAToolIsNoFaultOfTheTool)
{
    tools.answer(nodeQuery, 0, {"NAME", "====", std::string(4096, 'x')});
    tools.answer(nodeQuery, 1);
    check({"/dev/sdc", "/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("warning /dev/sdc: a node's name that is longer than a path can be in "
                            "the answer to: " +
                                std::string(nodeQuery),
                            StartsWith("warning /dev/sdc: status 1 from: ")));
}

TEST_F(ToolChecks, AnswersAreNotKeptUnlessTheyAreWanted)
{
    command::ToolChecks checks(
        {}, stop, [](const Finding&) {}, nullptr);
    checks.checkTools();
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    checks.checkDisk("/dev/sdc");
    EXPECT_THAT(tools.events, Contains(pathQuery));
}

TEST_F(ToolChecks, NothingIsScannedOrRemoved)
{
    tools.answer(nodeQuery, 1);
    check({"/dev/sdc"});
    EXPECT_THAT(tools.events, Not(Contains(HasSubstr("scandisks"))));
    EXPECT_THAT(tools.events, Not(Contains(HasSubstr("sleep"))));
}

TEST_F(ToolChecks, WhatIsInterruptedIsNoFinding)
{
    tools.answer({nodeQuery, 1015, {}, [this] {
                      EXPECT_TRUE(stop.toolsRun());
                      stop.request();
                  }});
    EXPECT_THROW(check({"/dev/sdc", "/dev/sdd"}), command::Interrupted);
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_FALSE(stop.toolsRun());
}

} // namespace
