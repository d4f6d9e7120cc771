// The format strings that the framework's trace log receives.
#include <gmock/gmock.h>

#include <cstdarg>
#include <cstdio>
#include <ostream>
#include <set>

#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/names_model.h"
#include "tests/support/operations.h"
#include "tests/support/scripted_tools.h"

using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::EZeExecPipe;
using testing::Contains;
using testing::UnorderedElementsAreArray;

namespace {

/// A call of the log: its arguments, and the formatted text.
struct Call {
    int level;
    std::string format;
    std::string text;

    bool operator==(const Call& other) const
    {
        return level == other.level && format == other.format && text == other.text;
    }
};

std::ostream& operator<<(std::ostream& stream, const Call& call)
{
    return stream << call.level << " \"" << call.format << "\" \"" << call.text << '"';
}

std::vector<Call>& calls()
{
    static std::vector<Call> all;
    return all;
}

} // namespace

// Replaces the framework's log in this program.
void CZeTraceLog::trace(int level, const char* format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    EXPECT_LT(std::vsnprintf(text, sizeof text, format, arguments), int{sizeof text});
    va_end(arguments);
    calls().push_back({level, format, text});
}

namespace {

using Lines = std::vector<std::string>;

const std::vector<std::pair<int, std::string>> formats = {
    {6, "Entering Function %s [%d, %s]"},
    {6, "Exiting Function %s [%d, %s]"},
    {3, "INFO: CDmpDeviceMapperClaim::claim - returning CLAIM_SECONDARY"},
    {3, "INFO: CDmpDeviceMapperClaim::appendPartitionSuffix device [%s] partition[%s] partnum[%d]"},
    {3, "INFO: CDmpDeviceMapperClaim::removePartitionSuffix device [%s] partition[%s] partnum[%d]"},
    {3, "INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY"},
    {3, "INFO: CDmpPowerPathClaim::appendPartitionSuffix device [%s] partition[%s] partnum[%d]"},
    {3, "INFO: CDmpPowerPathClaim::removePartitionSuffix device [%s] partition[%s] partnum[%d]"},
    {3, "[%s] is a partition"},
    {6, "devicename aftering removing partition suffix [%s]."},
    {6, "Got active path [%s]."},
    {3, "ExecuteCommand command: %s"},
    {1, "ExecuteCommand - exception thrown in command execution."},
    {2, "Warning - failed with message='%s' and error no '%d'."},
    {6, "ExecuteCommand passed with output '%s'"},
    {2, "CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command [%s] failed with error [%s]"},
    {2, "CKoDMPSupport::getOSDiskHandleForKoVMDisk : Command [%s] failed with error [%s]"},
    {2, "CKoDMPSupport::kovmScanDisks : Command [%s] failed with error [%s]"},
    {2, "Warning - no output of command."},
    {2, "Warning - no valid output of command."},
    {2, "Unable to get enabled disk path for dmp node '%s'"},
    {2, "Warning - removing disk from kovm db is failed."},
    {6, "Obtaining dmp nodes failed. need to retry."},
    {2, "Warning - obtaining dmp nodes failed even after multiple retries."},
    {6, "We will remove dmp node from kovm and rescan to regenerate dmp node for disk [%s]."},
    {6, "Obtained dmp nodes is [%s]."},
    {6, "After refresh, obtained dmp nodes is [%s]."},
};

constexpr char lookup[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char subpaths[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";
constexpr char removal[] = "/usr/sbin/kodisk   rm arr0_17";
constexpr char rescanDisk[] = "/usr/sbin/kodisk   scandisks  device=sdc";
constexpr char rescanAll[] = "/usr/sbin/kodisk   scandisks ";
const Lines nodeTable = {"NAME", "====", "arr0_17"};

class Formats : public testing::Test {
protected:
    Formats()
    {
        m_manager.registerTraceLog(m_log);
        m_support.registerTraceLog(m_log);
        calls().clear();
    }

    void askForNames()
    {
        for (const std::string& device : model::partitions) {
            for (const Operation& operation : operationsOf(m_manager, device))
                operation.call();
        }
    }

    void findActivePath()
    {
        CDmpDeviceClaimBase* module = nullptr;
        m_manager.getClaimModule(module, "/dev/sdc");
        m_tools.answer(lookup, 0, nodeTable).answer(subpaths, 0, {"NAME", "===", "sdf ENABLED(A)"});
        EXPECT_EQ(module->getActivePath("/dev/sdc", true), "/dev/sdf");
    }

    void failToFindNode()
    {
        m_tools.answer(lookup, 3, {"no", "disk"}).answer(rescanDisk, 4, {"no", "scan"});
        m_tools.answer(lookup, 0).answer(rescanDisk, 0);
        m_tools.answer(lookup, 0, {"note", "NAME"}).answer(rescanDisk, 0);
        m_tools.answer({lookup, 0, {}, [] { throw EZeExecPipe("missing"); }}).answer(rescanDisk, 0);
        EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler_Waited("sdc", m_name), 1);
    }

    void refreshNode()
    {
        m_tools.answer(lookup, 0, nodeTable).answer(removal, 5);
        m_tools.answer(rescanAll, 0).answer(lookup, 0, nodeTable);
        EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler_Refreshed("sdc", m_name), 0);
    }

    void failToFindPath()
    {
        m_tools.answer(subpaths, 6, {"no", "node"}).answer(subpaths, 0, {"NAME", "===="});
        EXPECT_EQ(m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name), 1);
        EXPECT_EQ(m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name), 1);
    }

    ScriptedTools m_tools;
    CZeTraceLogHandle m_log = new CZeTraceLog;
    CDmpClaimManager m_manager;
    CKoDMPSupport m_support;
    std::string m_name;
};

TEST_F(Formats, AreTheseAtTheseLevels)
{
    askForNames();
    findActivePath();
    failToFindNode();
    refreshNode();
    failToFindPath();
    std::set<std::pair<int, std::string>> seen;
    for (const Call& call : calls())
        seen.emplace(call.level, call.format);
    EXPECT_THAT(seen, UnorderedElementsAreArray(formats));
}

TEST_F(Formats, OfFailuresTakeTheCommandLineAndItsOutput)
{
    failToFindNode();
    failToFindPath();
    EXPECT_THAT(calls(),
                Contains(Call{2,
                              "CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command [%s] failed "
                              "with error [%s]",
                              "CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command "
                              "[/usr/sbin/kodmpadm   getdmpnode  nodename=sdc] failed with error "
                              "[nodisk]"}));
    EXPECT_THAT(calls(),
                Contains(Call{2,
                              "CKoDMPSupport::getOSDiskHandleForKoVMDisk : Command [%s] failed "
                              "with error [%s]",
                              "CKoDMPSupport::getOSDiskHandleForKoVMDisk : Command "
                              "[/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17] failed "
                              "with error [nonode]"}));
    EXPECT_THAT(
        calls(),
        Contains(Call{2, "CKoDMPSupport::kovmScanDisks : Command [%s] failed with error [%s]",
                      "CKoDMPSupport::kovmScanDisks : Command [/usr/sbin/kodisk   "
                      "scandisks  device=sdc] failed with error [noscan]"}));
}

} // namespace
