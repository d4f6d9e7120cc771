// The active path of a native disk, from the module down to the command lines.
#include <gmock/gmock.h>

#include <new>

#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using koze_pdk_4_4::EZeExecPipe;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

using Lines = std::vector<std::string>;

constexpr char file[] = "dmp_nativepath_claim.cpp";
constexpr char installed[] = "access /usr/sbin/kodmpadm 1";
constexpr char lookup[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char subpaths[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";
constexpr char removal[] = "/usr/sbin/kodisk   rm arr0_17";
constexpr char rescanAll[] = "/usr/sbin/kodisk   scandisks ";

const Lines nodeTable{"NAME", "====", "arr0_17 ENABLED arr0 2"};

/// Records the calls that reach its virtual slots.
class SpiedModule : public CNativePathClaim {
public:
    bool isRawDevice(std::string device) override
    {
        ScriptedTools::current()->events.push_back("isRawDevice " + device);
        return CNativePathClaim::isRawDevice(device);
    }

    std::string removeDevPrefix(std::string device) override
    {
        ScriptedTools::current()->events.push_back("removeDevPrefix " + device);
        return CNativePathClaim::removeDevPrefix(device);
    }
};

class ActivePath : public testing::Test {
protected:
    ActivePath() { m_module.registerTraceLog(m_log.handle()); }

    void activeIs(const std::string& disk)
    {
        m_tools.answer(subpaths, 0, {"NAME STATE TYPE", "====", disk + " ENABLED(A) PRIMARY"});
    }

    Lines trace() { return outline(m_log.takeLines(), file); }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CNativePathClaim m_module;
};

TEST_F(ActivePath, IsTheActiveSubPathOfTheDisksNode)
{
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdf");
    EXPECT_THAT(m_tools.events, ElementsAre(installed, lookup, subpaths));
    EXPECT_THAT(
        trace(),
        ElementsAre("> getActivePath", "> isKoDMPInstalled", "> isCommandAvailable",
                    "< isCommandAvailable", "< isKoDMPInstalled",
                    "> getKoVMDiskForOSDiskHandler_Waited", "> getKoVMDiskForOSDiskHandler",
                    "> executeCommand",
                    "3 ExecuteCommand command: /usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                    "6 ExecuteCommand passed with output 'NAME====arr0_17 ENABLED arr0 2'",
                    "< executeCommand", "< getKoVMDiskForOSDiskHandler",
                    "< getKoVMDiskForOSDiskHandler_Waited", "> getOSDiskHandleForKoVMDisk",
                    "> executeCommand",
                    "3 ExecuteCommand command: /usr/sbin/kodmpadm   getsubpaths  "
                    "dmpnodename=arr0_17",
                    "6 ExecuteCommand passed with output 'NAME STATE TYPE====sdf ENABLED(A) "
                    "PRIMARY'",
                    "< executeCommand", "< getOSDiskHandleForKoVMDisk",
                    "6 Got active path [/dev/sdf].", "< getActivePath"));
}

TEST_F(ActivePath, MayBeTheDiskItself)
{
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdc");
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
    EXPECT_THAT(trace(), Contains("6 Got active path [/dev/sdc]."));
}

TEST_F(ActivePath, OfANameWithoutItsDirectoryStandsUnderDev)
{
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(m_module.getActivePath("sdc", true), "/dev/sdf");
}

TEST_F(ActivePath, WithoutWaitingIsFoundByTheRefreshingLookup)
{
    m_tools.answer(lookup, 0, nodeTable)
        .answer(removal, 0)
        .answer(rescanAll, 0)
        .answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", false), "/dev/sdf");
    EXPECT_THAT(m_tools.events,
                ElementsAre(installed, lookup, removal, rescanAll, lookup, subpaths));
    const Lines lines = trace();
    EXPECT_THAT(lines, Contains("> getKoVMDiskForOSDiskHandler_Refreshed"));
    EXPECT_THAT(lines, Not(Contains("> getKoVMDiskForOSDiskHandler_Waited")));
}

TEST_F(ActivePath, OfAPartitionIsLookedUpUnderThePartitionsName)
{
    m_tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc1", 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(m_module.getActivePath("/dev/sdc1", true), "/dev/sdf");
}

TEST_F(ActivePath, IsTheArgumentWhenTheToolIsNotInstalled)
{
    m_tools.installed = false;
    for (const char* path : {"/dev/sdc", "sdc", "", "/somewhere/else", "/dev//dev/sdc"}) {
        EXPECT_EQ(m_module.getActivePath(path, true), path);
        EXPECT_EQ(m_module.getActivePath(path, false), path);
    }
    EXPECT_EQ(m_tools.runners, 0);
    EXPECT_EQ(m_tools.events, Lines(10, installed));
}

TEST_F(ActivePath, IsTheArgumentWhenTheWaitingLookupFails)
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        m_tools.answer(lookup, 1);
        m_tools.answer("/usr/sbin/kodisk   scandisks  device=sdc", 0);
    }
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
}

TEST_F(ActivePath, IsTheArgumentWhenTheRefreshingLookupFails)
{
    m_tools.answer(lookup, 1);
    for (int attempt = 0; attempt < 4; ++attempt)
        m_tools.answer(rescanAll, 0).answer(lookup, 1);
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", false), "/dev/sdc");
}

TEST_F(ActivePath, IsTheArgumentWhenTheSubPathLookupFails)
{
    m_tools.answer(lookup, 0, nodeTable).answer(subpaths, 1);
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
    EXPECT_THAT(trace(), Not(Contains("6 Got active path [/dev/].")));
}

TEST_F(ActivePath, IsTheArgumentWhenTheSubPathHasNoName)
{
    m_tools.answer(lookup, 0, nodeTable).answer(subpaths, 0, {"no", "table"});
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
    EXPECT_THAT(trace(), Not(Contains("6 Got active path [/dev/].")));
}

TEST_F(ActivePath, OfANodeWithoutANameIsAskedForAllTheSame)
{
    m_tools.answer(lookup, 0, {"NAME", "===="})
        .answer("/usr/sbin/kodmpadm   getsubpaths  dmpnodename=", 1);
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
}

TEST_F(ActivePath, LosesOneDevPrefixOnlyForTheLookup)
{
    m_tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=/dev/sdc", 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(m_module.getActivePath("/dev//dev/sdc", true), "/dev/sdf");
}

TEST_F(ActivePath, AsksTheModulesOwnSlotsAboutTheFullPath)
{
    SpiedModule module;
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(module.getActivePath("/dev/sdc", true), "/dev/sdf");
    EXPECT_THAT(m_tools.events, ElementsAre("removeDevPrefix /dev/sdc", installed, lookup, subpaths,
                                            "isRawDevice /dev/sdc"));
}

TEST_F(ActivePath, ThatIsNotFoundAsksNothingAboutRawDevices)
{
    SpiedModule module;
    m_tools.answer(lookup, 0, nodeTable).answer(subpaths, 1);
    module.getActivePath("/dev/sdc", true);
    EXPECT_THAT(m_tools.events, Not(Contains("isRawDevice /dev/sdc")));
}

TEST_F(ActivePath, AnExceptionLeavesNoReferenceToTheLogBehind)
{
    m_tools.answer({lookup, 0, {}, [] { throw std::bad_alloc(); }});
    const int before = m_log.handle()->getCount();
    EXPECT_THROW(m_module.getActivePath("/dev/sdc", true), std::bad_alloc);
    EXPECT_EQ(m_log.handle()->getCount(), before);
    EXPECT_EQ(trace().back(), "< getActivePath");
}

TEST_F(ActivePath, AToolThatCannotBeRunGivesTheArgument)
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        m_tools.answer({lookup, 0, {}, [] { throw EZeExecPipe("no memory"); }});
        m_tools.answer("/usr/sbin/kodisk   scandisks  device=sdc", 0);
    }
    EXPECT_EQ(m_module.getActivePath("/dev/sdc", true), "/dev/sdc");
}

TEST_F(ActivePath, OfAStrangeNameRunsTheToolAndNothingElse)
{
    const std::string names[] = {
        "sd;reboot", "sd c", "sd\nc", "sd'c\"", "%s%n", "$(reboot)", std::string(65536, 'x')};
    for (const std::string& name : names) {
        m_tools.events.clear();
        const std::string query = "/usr/sbin/kodmpadm   getdmpnode  nodename=" + name;
        m_tools.answer(query, 0, nodeTable).answer(subpaths, 1);
        EXPECT_EQ(m_module.getActivePath("/dev/" + name, true), "/dev/" + name);
        EXPECT_THAT(m_tools.events, ElementsAre(installed, query, subpaths));
    }
}

TEST_F(ActivePath, IsReachedThroughTheManager)
{
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* module = nullptr;
    ASSERT_EQ(manager.getClaimModule(module, "/dev/sdc"), CLAIM_DEFAULT);
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(module->getActivePath("/dev/sdc", true), "/dev/sdf");
}

TEST_F(ActivePath, WorksWithoutALog)
{
    CNativePathClaim silent;
    m_tools.answer(lookup, 0, nodeTable);
    activeIs("sdf");
    EXPECT_EQ(silent.getActivePath("/dev/sdc", true), "/dev/sdf");
    EXPECT_EQ(m_tools.runnerLog, nullptr);
}

} // namespace
