#include "asked_disks.h"
#include "doctor/tool_files.h"

namespace {

using command::Code;
using command::Finding;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

class ToolFiles : public DiskFindings {};

TEST_F(ToolFiles, ToolsThatCanBeRunAreToldOf)
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

TEST_F(ToolFiles, WithoutTheToolsNothingIsAsked)
{
    tools.installed = false;
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("note no-volume-manager KoVM: its tools are not installed: "
                                        "the active path of a native path is that path"));
    EXPECT_THAT(tools.events, Contains("stat /usr/sbin/kodmpadm"));
}

TEST_F(ToolFiles, WhatIsNoFileIsNoTool)
{
    scriptedModes() = {{"/usr/sbin/kodmpadm", S_IFDIR}, {"/usr/sbin/kodisk", S_IFBLK}};
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error lookup-tool-unusable /usr/sbin/kodmpadm: is no "
                                        "file: lookups cannot run it",
                                        "warning scan-tool-unusable /usr/sbin/kodisk: is no file: "
                                        "lookups cannot run it"));
    EXPECT_THAT(last().advice, StartsWith("Move it away"));
}

TEST_F(ToolFiles, AnAdministrationToolThatMayNotBeExecutedIsAnError)
{
    tools.notExecutable = {"/usr/sbin/kodmpadm"};
    std::vector<Finding> found;
    EXPECT_FALSE(
        command::checkTools({}, [&](const Finding& finding) { found.push_back(finding); }));
    EXPECT_EQ(found[0].code, Code::lookupToolUnusable);
    EXPECT_EQ(found[0].text, "may not be executed: active paths are not looked up");
    EXPECT_EQ(found[0].remedy, "chmod 755 /usr/sbin/kodmpadm");
}

TEST_F(ToolFiles, AMissingAdministrationToolIsAnErrorBesideTheOther)
{
    tools.missing = {"/usr/sbin/kodmpadm"};
    tools.notExecutable = tools.missing;
    check({"/dev/sdc"});
    EXPECT_THAT(findings(), ElementsAre("error lookup-tool-unusable /usr/sbin/kodmpadm: is "
                                        "missing: active paths are not looked up"));
}

TEST_F(ToolFiles, AMissingDiskToolIsAWarningAndDisksAreAskedAbout)
{
    tools.missing = {"/usr/sbin/kodisk"};
    tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable);
    check({"/dev/sdc"});
    EXPECT_THAT(findings(),
                ElementsAre("warning scan-tool-unusable /usr/sbin/kodisk: is missing: a lookup can "
                            "neither scan nor remove disks",
                            StartsWith("ok active-path /dev/sdc: ")));
}

} // namespace
