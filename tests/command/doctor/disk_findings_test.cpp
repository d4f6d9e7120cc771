// What doctor asks the volume manager's tools, and what it makes of their answers.
#include "doctor/disk_findings.h"

#include <gmock/gmock.h>

#include "doctor/tool_files.h"
#include "multipath/disk_question.h"
#include "tests/support/scripted_tools.h"

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

using command::Code;
using command::DiskAnswer;
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
constexpr char otherNodeQuery[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdd";
constexpr char pathQuery[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";

const std::vector<std::string> nodeTable{"NAME       STATE      GROUP    PATHS",
                                         "====", "arr0_17    ENABLED    arr0     2"};
const std::vector<std::string> pathTable{"NAME    STATE    TYPE    CTLR",
                                         "====", "sdb     ENABLED(A)    PRIMARY    c1"};

class DiskFindings : public testing::Test {
protected:
    DiskFindings() { scriptedModes().clear(); }

    /// Checks the tools, and asks about the disks one after the other, like one job of doctor.
    void check(const std::vector<std::string>& paths)
    {
        const auto take = [this](const Finding& finding) { m_findings.push_back(finding); };
        m_findings.clear();
        m_answers.clear();
        if (!command::checkTools(log, take))
            return;
        bool isLast = false;
        for (const std::string& path : paths) {
            m_answers.push_back(isLast ? DiskAnswer{path}
                                       : command::askAboutDisk(path, log, stop, true));
            isLast |= m_answers.back().mustBeLast();
        }
        command::reportAnswers(m_answers, command::holdsAny(m_answers), take);
    }

    std::vector<command::AskedCommand> commands() const
    {
        std::vector<command::AskedCommand> all;
        for (const DiskAnswer& answer : m_answers)
            all.insert(all.end(), answer.asked.begin(), answer.asked.end());
        return all;
    }

    /// The nodes in the answers, of disks that the kernel does not have.
    std::vector<command::MultipathDisk> nodes() const
    {
        return command::nodesOf(command::Inventory({"/nonexistent", "/nonexistent"}), m_answers);
    }

    /// "SEVERITY CODE DEVICE: TEXT" for each finding after those about the tools.
    std::vector<std::string> findings() const
    {
        std::vector<std::string> lines;
        for (const Finding& finding : m_findings) {
            if (finding.code != Code::toolReady)
                lines.push_back(std::string(command::severityName(finding.severity())) + ' ' +
                                command::factsOf(finding.code).name + ' ' + finding.device + ": " +
                                finding.text);
        }
        return lines;
    }

    const Finding& last() const { return m_findings.back(); }

    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    command::StopRequest stop;
    ScriptedTools tools;

private:
    std::vector<Finding> m_findings;
    std::vector<DiskAnswer> m_answers;
};

TEST_F(DiskFindings, ToolsThatCanBeRunAreToldOf)
{
    std::vector<Finding> found;
    EXPECT_TRUE(command::checkTools({}, [&](const Finding& finding) { found.push_back(finding); }));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].device, "/usr/sbin/kodmpadm");
    EXPECT_EQ(found[1].device, "/usr/sbin/kodisk");
    for (const Finding& finding : found) {
        EXPECT_EQ(finding.code, Code::toolReady);
        EXPECT_EQ(finding.text, "can be run");
        EXPECT_EQ(finding.remedy, "");
    }
    EXPECT_THAT(tools.events, Contains("access /usr/sbin/kodmpadm 1"));
}

TEST_F(DiskFindings, WithoutTheToolsNothingIsAsked)
{
    tools.installed = false;
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("note no-volume-manager KoVM: its tools are not installed: "
                                        "the active path of a native path is that path"));
    EXPECT_THAT(tools.events, Contains("stat /usr/sbin/kodmpadm"));
}

TEST_F(DiskFindings, WhatIsNoFileIsNoTool)
{
    scriptedModes() = {{"/usr/sbin/kodmpadm", S_IFDIR}, {"/usr/sbin/kodisk", S_IFBLK}};
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error lookup-tool-unusable /usr/sbin/kodmpadm: is no "
                                        "file: lookups cannot run it",
                                        "warning scan-tool-unusable /usr/sbin/kodisk: is no file: "
                                        "lookups cannot run it"));
    EXPECT_THAT(last().advice, StartsWith("Move it away"));
}

TEST_F(DiskFindings, AnAdministrationToolThatMayNotBeExecutedIsAnError)
{
    tools.notExecutable = {"/usr/sbin/kodmpadm"};
    std::vector<Finding> found;
    EXPECT_FALSE(
        command::checkTools({}, [&](const Finding& finding) { found.push_back(finding); }));
    EXPECT_EQ(found[0].code, Code::lookupToolUnusable);
    EXPECT_EQ(found[0].text, "may not be executed: active paths are not looked up");
    EXPECT_EQ(found[0].remedy, "chmod 755 /usr/sbin/kodmpadm");
}

TEST_F(DiskFindings, AMissingAdministrationToolIsAnErrorBesideTheOther)
{
    tools.missing = {"/usr/sbin/kodmpadm"};
    tools.notExecutable = tools.missing;
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error lookup-tool-unusable /usr/sbin/kodmpadm: is "
                                        "missing: active paths are not looked up"));
}

TEST_F(DiskFindings, AMissingDiskToolIsAWarningAndDisksAreAskedAbout)
{
    tools.missing = {"/usr/sbin/kodisk"};
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("warning scan-tool-unusable /usr/sbin/kodisk: is missing: a lookup can "
                            "neither scan nor remove disks",
                            StartsWith("ok active-path /dev/sdc: ")));
}

TEST_F(DiskFindings, EachQuestionIsAskedOnceAndItsTableKept)
{
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("ok active-path /dev/sdc: node arr0_17, active path /dev/sdb"));
    ASSERT_EQ(commands().size(), 2U);
    EXPECT_EQ(commands()[0].command, nodeQuery);
    EXPECT_EQ(commands()[0].status, 0);
    EXPECT_EQ(commands()[0].output, nodeTable);
    EXPECT_EQ(commands()[1].command, pathQuery);
    EXPECT_EQ(commands()[1].output, pathTable);
}

TEST_F(DiskFindings, TheRunnerTracesAndTakesStandardOutputOnly)
{
    tools.answer(nodeQuery, 1);
    command::askAboutDisk("/dev/sdc", log, stop, false);
    EXPECT_EQ(tools.runnerArgument, 1);
    EXPECT_EQ(tools.runnerLog, log.get());
    EXPECT_EQ(tools.liveRunners, 0);
    EXPECT_EQ(tools.otherArguments, (std::vector<std::string>{"", "30", "", "", ""}));
}

TEST_F(DiskFindings, AnActivePathThatDoesNotExistIsAWarning)
{
    tools.missing = {"/dev/sdb"};
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("warning active-path-missing /dev/sdc: node arr0_17, "
                                        "active path /dev/sdb, which does not exist here"));
    EXPECT_EQ(last().remedy, "dmpclaim active --refresh /dev/sdc");
    EXPECT_THAT(last().advice, HasSubstr("removes the node"));
}

TEST_F(DiskFindings, AnActivePathThatIsNoBlockDeviceIsAnError)
{
    scriptedModes() = {{"/dev/sdb", S_IFREG}};
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error active-path-no-device /dev/sdc: node arr0_17, "
                                        "active path /dev/sdb, which is no block device here"));
    EXPECT_EQ(last().remedy, "mv -n -- /dev/sdb /root/");
}

TEST_F(DiskFindings, AnActivePathThatLeavesDevIsAnError)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "../etc/shadow ENABLED(A) PRIMARY c1"});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error active-path-refused /dev/sdc: node arr0_17, active "
                                        "path /dev/../etc/shadow, which is not to be used: it "
                                        "leaves /dev"));
}

TEST_F(DiskFindings, ADiskThatIsNotHeldIsANoteBesideOneThatIs)
{
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    tools.answer(otherNodeQuery, 1, {"ERROR disk sdd is not known"});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("ok active-path /dev/sdc: "),
                            "note disk-not-held /dev/sdd: the volume manager does not "
                            "hold it (/usr/sbin/kodmpadm getdmpnode ended with status "
                            "1, 'ERROR disk sdd is not known'), as it holds other disks"));
    EXPECT_EQ(last().remedy, "/usr/sbin/kodisk   scandisks  device=sdd");
}

TEST_F(DiskFindings, ATableWithoutANodeIsANoteBesideADiskThatIsHeld)
{
    tools.answer(nodeQuery, 0, {"NAME", "===="});
    tools.answer(otherNodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(), ElementsAre("note disk-not-held /dev/sdc: the volume manager does not "
                                        "hold it (/usr/sbin/kodmpadm getdmpnode names no node), as "
                                        "it holds other disks",
                                        StartsWith("ok active-path /dev/sdd: ")));
}

TEST_F(DiskFindings, AFailureForAPathOfAKnownNodeIsTheTools)
{
    tools.answer(otherNodeQuery, 3).answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "sdb ENABLED(A)", "sdd ENABLED"});
    check({"/dev/sdd", "/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("ok active-path /dev/sdc: "),
                            "error tool-failed /usr/sbin/kodmpadm getdmpnode: ended "
                            "with status 3; it kept 1 disk from being examined: /dev/sdd"));
}

TEST_F(DiskFindings, TablesWithoutANodeAreOneWarningWhenNoDiskIsHeld)
{
    tools.answer(nodeQuery, 0, {"NAME", "===="}).answer(otherNodeQuery, 0, {"NAME", "===="});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(),
                ElementsAre("warning no-disk-held /usr/sbin/kodmpadm getdmpnode: names no node "
                            "for 2 disks: /dev/sdc, /dev/sdd"));
    EXPECT_EQ(last().remedy, "/usr/sbin/kodisk   scandisks ");
}

TEST_F(DiskFindings, AToolThatFailsIsOneErrorThatNamesTheDisks)
{
    tools.answer(nodeQuery, 1, {"", " \t\r", "ERROR sdc is not found", "more"});
    tools.answer(otherNodeQuery, 1, {"ERROR sdd is not found"});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(
        findings(),
        ElementsAre(
            "error tool-failed /usr/sbin/kodmpadm getdmpnode: ended with "
            "status 1, 'ERROR sdc is not found'; it kept 2 disks from being examined: /dev/sdc, "
            "/dev/sdd"));
    EXPECT_EQ(last().remedy, nodeQuery);
    EXPECT_EQ(commands()[0].status, 1);
    EXPECT_EQ(commands()[0].output.size(), 4U);
}

TEST_F(DiskFindings, FailuresOfDifferentKindsAreFindingsOfTheirOwn)
{
    tools.answer(nodeQuery, 1).answer(otherNodeQuery, CZeExecPipeBase::killedBySignal + 9);
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(
        findings(),
        ElementsAre(
            "error tool-failed /usr/sbin/kodmpadm getdmpnode: ended with status 1; it kept "
            "1 disk from being examined: /dev/sdc",
            "error tool-failed /usr/sbin/kodmpadm getdmpnode: was ended by signal 9; it kept "
            "1 disk from being examined: /dev/sdd"));
}

TEST_F(DiskFindings, AFailureForANodeIsToldOfItsDisk)
{
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 3);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("error tool-failed /usr/sbin/kodmpadm getsubpaths: ended "
                            "with status 3; it kept 1 disk from being examined: /dev/sdc"));
    EXPECT_EQ(last().remedy, pathQuery);
}

TEST_F(DiskFindings, EachEndingHasItsWords)
{
    const std::pair<int, const char*> endings[] = {
        {255, ": ended with status 255; it kept"},
        {CZeExecPipeBase::killedBySignal + 9, ": was ended by signal 9; it kept"},
        {CZeExecPipeBase::statusUnknown, ": ended, and its status was lost; it kept"}};
    for (const auto& [status, words] : endings) {
        tools.answer(nodeQuery, status);
        check({"/dev/sdc"});
        EXPECT_THAT(findings(), ElementsAre(HasSubstr(words)));
    }
}

TEST_F(DiskFindings, AToolThatHangsIsNotAskedAgain)
{
    tools.answer(nodeQuery, CZeExecPipeBase::deadlinePassed);
    check({"/dev/sdc", "/dev/sdd", "/dev/sde"});
    EXPECT_THAT(findings(),
                ElementsAre("error tool-hangs /usr/sbin/kodmpadm getdmpnode: took more than 30 "
                            "seconds; it kept 3 disks from being examined: /dev/sdc, /dev/sdd, "
                            "/dev/sde"));
    EXPECT_EQ(commands()[0].status, 1100);
}

TEST_F(DiskFindings, AToolThatCannotBeRunIsNotAskedAgain)
{
    tools.answer(
        {nodeQuery, 0, {}, [] { throw koze_pdk_4_4::EZeExecPipe("no such interpreter"); }});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(), ElementsAre("error tool-not-run /usr/sbin/kodmpadm getdmpnode: no such "
                                        "interpreter; it kept 2 disks from being examined: "
                                        "/dev/sdc, /dev/sdd"));
    EXPECT_THAT(last().advice, HasSubstr("the volume manager's package"));
    EXPECT_THAT(commands(), IsEmpty());
    EXPECT_FALSE(stop.toolsRun());
}

TEST_F(DiskFindings, AFloodingToolIsNotAskedAgain)
{
    tools.answer(nodeQuery, CZeExecPipeBase::boundExceeded, {"NAME"});
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("error tool-floods /usr/sbin/kodmpadm "
                                       "getdmpnode: printed too much; it kept 2 disks")));
    EXPECT_EQ(commands()[0].status, 1101);
}

TEST_F(DiskFindings, AnAnswerThatIsNoTableIsAnError)
{
    tools.answer(nodeQuery, 0, {"note", "NAME", "====", "arr0_17"});
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0);
    check({"/dev/sdc", "/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("error tool-unreadable /usr/sbin/kodmpadm getdmpnode: a line before "
                            "the header; it kept 1 disk from being examined: /dev/sdc",
                            "error tool-unreadable /usr/sbin/kodmpadm getsubpaths: no table; it "
                            "kept 1 disk from being examined: /dev/sdc"));
    EXPECT_THAT(last().advice, StartsWith("Run it by hand"));
}

TEST_F(DiskFindings, ARemedyMayBePastedIntoAShell)
{
    const std::string node = "/usr/sbin/kodmpadm   getdmpnode  nodename=sd$(x)";
    tools.answer(node, 1);
    check({"/dev/sd$(x)"});
    EXPECT_EQ(last().remedy, "/usr/sbin/kodmpadm   getdmpnode  'nodename=sd$(x)'");
    tools.answer(nodeQuery, 0, {"NAME", "====", "$(x)"});
    tools.answer("/usr/sbin/kodmpadm   getsubpaths  dmpnodename=$(x)", 1);
    check({"/dev/sdc"});
    EXPECT_EQ(last().remedy, "/usr/sbin/kodmpadm   getsubpaths  'dmpnodename=$(x)'");
    tools.missing = {"/dev/sdb"};
    tools.answer(node, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sd$(x)"});
    EXPECT_EQ(last().remedy, "dmpclaim active --refresh '/dev/sd$(x)'");
}

TEST_F(DiskFindings, APathThatLooksLikeAnOptionIsAdvisedAsAPath)
{
    tools.missing = {"/dev/sdb"};
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=--trace-file=/dev/sdc", 0, nodeTable);
    tools.answer(pathQuery, 0, pathTable);
    check({"--trace-file=/dev/sdc"});
    EXPECT_EQ(last().remedy, "dmpclaim active --refresh -- --trace-file=/dev/sdc");
}

TEST_F(DiskFindings, ANameThatTheToolsWouldMisreadIsNotAskedAbout)
{
    check({"/dev/sdc force=yes"});
    EXPECT_THAT(findings(),
                ElementsAre("error name-not-asked /dev/sdc force=yes: the volume manager is not "
                            "asked about it: it holds a space, which separates the arguments of "
                            "the volume manager's tools"));
    EXPECT_THAT(commands(), IsEmpty());
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc,sdd", "/dev/sdc"});
    EXPECT_THAT(findings().back(), StartsWith("ok active-path /dev/sdc: "));
}

TEST_F(DiskFindings, ANameThatIsTooLongForAToolIsNoFaultOfTheTool)
{
    const std::string longest = "/dev/sd" + std::string(4088, 'x');
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=" + longest.substr(5), 1);
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sd" + std::string(200'000, 'x'), longest + 'x', longest, "/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre(EndsWith("xxx: the volume manager is not asked about it: it is longer "
                                     "than a path can be"),
                            EndsWith("it is longer than a path can be"),
                            StartsWith("note disk-not-held " + longest + ": "),
                            StartsWith("ok active-path /dev/sdc: ")));
}

TEST_F(DiskFindings, ANodesNameThatIsTooLongForAToolIsNoFaultOfTheTool)
{
    tools.answer(nodeQuery, 0, {"NAME", "====", std::string(4096, 'x')});
    tools.answer(otherNodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc", "/dev/sdd"});
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("ok active-path /dev/sdd: "),
                            "error tool-unreadable /usr/sbin/kodmpadm getdmpnode: names a node "
                            "whose name is longer than a path can be; it kept 1 disk from being "
                            "examined: /dev/sdc"));
}

TEST_F(DiskFindings, ANodesPathsAreKnownByTheirStates)
{
    const std::vector<std::string> paths{"NAME STATE TYPE",      "====",
                                         "sdb ENABLED PRIMARY",  "sdc ENABLED(A) SECONDARY",
                                         "sdd DISABLED PRIMARY", "sde ENABLED SECONDARY"};
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, paths);
    tools.answer(otherNodeQuery, 0, nodeTable).answer(pathQuery, 0, paths);
    check({"/dev/sdc", "/dev/sdd"});
    const std::vector<command::MultipathDisk> found = nodes();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].device, "arr0_17");
    EXPECT_STREQ(found[0].driver, "kodmp");
    std::string states;
    for (const command::ExaminedPath& path : found[0].paths)
        states +=
            path.name + ' ' + command::pathStateName(path.state) + (path.isUsed ? " used; " : "; ");
    EXPECT_EQ(states, "sdb standby; sdc active used; sdd failed; sde standby; ");
}

TEST_F(DiskFindings, APathThatIsNotEnabledIsNoPath)
{
    tools.answer(nodeQuery, 0, nodeTable);
    tools.answer(pathQuery, 0, {"NAME", "====", "sdb DISABLED PRIMARY c1"});
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), IsEmpty()); // the node's redundancy tells of it
    EXPECT_EQ(nodes().at(0).usablePaths(), 0U);
    EXPECT_FALSE(nodes().at(0).paths.at(0).isUsed);
}

TEST_F(DiskFindings, AnswersAreNotKeptUnlessTheyAreWanted)
{
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    const DiskAnswer answer = command::askAboutDisk("/dev/sdc", log, stop, false);
    EXPECT_THAT(answer.asked.at(0).output, IsEmpty());
    EXPECT_EQ(answer.asked.at(1).status, 0);
}

TEST_F(DiskFindings, NothingIsScannedOrRemoved)
{
    tools.answer(nodeQuery, 1);
    check({"/dev/sdc"});
    EXPECT_THAT(tools.events, Not(Contains(HasSubstr("scandisks"))));
    EXPECT_THAT(tools.events, Not(Contains(HasSubstr("sleep"))));
}

TEST_F(DiskFindings, WhatIsInterruptedIsNoFinding)
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
