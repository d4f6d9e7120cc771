#include "asked_disks.h"

namespace {

using command::DiskAnswer;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

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

} // namespace
