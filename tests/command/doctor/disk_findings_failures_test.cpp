// Tools that fail, hang, flood or cannot be run.
#include "asked_disks.h"
#include "pdk/include/czeexecpipe.h"

namespace {

using koze_pdk_4_4::CZeExecPipeBase;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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
