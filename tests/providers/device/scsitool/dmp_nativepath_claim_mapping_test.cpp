// Asking for the node of a disk and for the best path of a node.
#include <gmock/gmock.h>

#include <new>
#include <optional>
#include <string>
#include <vector>

#include "ko_dmp_mapping.h"
#include "pdk/include/czeexecpipe.h"
#include "tests/support/allocation_probe.h"

using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::EZeExecPipe;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Lines nodeTable(const Lines& rows)
{
    Lines table{"NAME       STATE      GROUP     PATHS", "====================================="};
    table.insert(table.end(), rows.begin(), rows.end());
    return table;
}

TEST_F(KoDmpMapping, TheNodeIsTheNameOfTheFirstRow)
{
    EXPECT_EQ(node(nodeTable({"arr0_17    ENABLED    arr0      2", "arr0_18    ENABLED"})), 0);
    EXPECT_EQ(m_name, "arr0_17");
    EXPECT_THAT(ownTrace(), IsEmpty());
}

TEST_F(KoDmpMapping, TheNodesStateDoesNotMatter)
{
    EXPECT_EQ(node(nodeTable({"arr0_17    DISABLED   arr0      2"})), 0);
    EXPECT_EQ(m_name, "arr0_17");
}

TEST_F(KoDmpMapping, TheWholeLookupIsTracedInOrder)
{
    node({"NAME", "====", "arr0_17"});
    EXPECT_THAT(
        outline(m_log.takeLines(), file),
        ElementsAre("> getKoVMDiskForOSDiskHandler", "> executeCommand",
                    "3 ExecuteCommand command: /usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                    "6 ExecuteCommand passed with output 'NAME====arr0_17'", "< executeCommand",
                    "< getKoVMDiskForOSDiskHandler"));
}

TEST_F(KoDmpMapping, AFailedNodeQueryIsTracedWithItsCommandAndOutput)
{
    EXPECT_EQ(node({"no", "disk"}, 3), 1);
    EXPECT_EQ(m_name, "");
    EXPECT_THAT(
        outline(m_log.takeLines(), file),
        ElementsAre("> getKoVMDiskForOSDiskHandler", "> executeCommand",
                    "3 ExecuteCommand command: /usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                    "2 Warning - failed with message='nodisk' and error no '3'.",
                    "< executeCommand",
                    "2 CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command "
                    "[/usr/sbin/kodmpadm   getdmpnode  nodename=sdc] failed with error [nodisk]",
                    "< getKoVMDiskForOSDiskHandler"));
}

TEST_F(KoDmpMapping, AFailedPathQueryIsTracedWithItsCommandAndOutput)
{
    EXPECT_EQ(path({"no", "node"}, 3), 1);
    EXPECT_EQ(m_name, "");
    EXPECT_THAT(
        outline(m_log.takeLines(), file),
        ElementsAre(
            "> getOSDiskHandleForKoVMDisk", "> executeCommand",
            "3 ExecuteCommand command: /usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17",
            "2 Warning - failed with message='nonode' and error no '3'.", "< executeCommand",
            "2 CKoDMPSupport::getOSDiskHandleForKoVMDisk : Command "
            "[/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17] failed with error [nonode]",
            "< getOSDiskHandleForKoVMDisk"));
}

TEST_F(KoDmpMapping, AFailedCommandWithoutOutputHasAnEmptyMessage)
{
    EXPECT_EQ(node({}, 1), 1);
    EXPECT_THAT(ownTrace(), ElementsAre("2 CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command "
                                        "[/usr/sbin/kodmpadm   getdmpnode  nodename=sdc] failed "
                                        "with error []"));
}

TEST_F(KoDmpMapping, ATableOfAFailedCommandIsNotRead)
{
    EXPECT_EQ(node(nodeTable({"arr0_17"}), 1), 1);
    EXPECT_EQ(m_name, "");
    EXPECT_EQ(path({"NAME", "====", "sdb ENABLED(A)"}, 1), 1);
    EXPECT_EQ(m_name, "");
}

TEST_F(KoDmpMapping, AToolThatCannotBeRunFailsTheLookup)
{
    m_tools.answer({nodeCommand, 0, {}, [] { throw EZeExecPipe("missing"); }});
    EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler("sdc", m_name), 1);
    EXPECT_EQ(m_name, "");
}

TEST_F(KoDmpMapping, OtherExceptionsPassAndTheNameIsEmptied)
{
    m_tools.answer({nodeCommand, 0, {}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(m_support.getKoVMDiskForOSDiskHandler("sdc", m_name), std::bad_alloc);
    EXPECT_EQ(m_name, "");
    m_name = "old";
    m_tools.answer({pathCommand, 0, {}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name), std::bad_alloc);
    EXPECT_EQ(m_name, "");
}

TEST_F(KoDmpMapping, AnEmptyNameIsAskedForLikeAnyOther)
{
    m_tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=", 0, {"NAME", "=", "arr0_1"});
    EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler("", m_name), 0);
    EXPECT_EQ(m_name, "arr0_1");
    m_tools.answer("/usr/sbin/kodmpadm   getsubpaths  dmpnodename=", 0,
                   {"NAME", "=", "sdb ENABLED"});
    EXPECT_EQ(m_support.getOSDiskHandleForKoVMDisk("", m_name), 0);
    EXPECT_EQ(m_name, "sdb");
}

TEST_F(KoDmpMapping, ANameGoesIntoTheCommandLineAsItIs)
{
    const std::string name = "sd c;$(x)'\"%s\n" + std::string(65536, 'y');
    m_tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=" + name, 1);
    EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler(name, m_name), 1);
}

TEST_F(KoDmpMapping, TheNameMayBePassedAsItsOwnResult)
{
    m_tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=old", 0, {"NAME", "=", "new"});
    EXPECT_EQ(m_support.getKoVMDiskForOSDiskHandler(m_name, m_name), 0);
    EXPECT_EQ(m_name, "new");
}

TEST_F(KoDmpMapping, NoLineIsCopiedWithoutALog)
{
    constexpr std::size_t longLine = 4096;
    const Lines table{"NAME", "=", "sdb DISABLED x" + std::string(longLine, ' '),
                      "sdc ENABLED x" + std::string(longLine, ' ')};
    CKoDMPSupport silent;
    for (const int status : {0, 1}) {
        std::optional<AllocationProbe> probe;
        m_tools.answer({pathCommand, status, table, [&] { probe.emplace(); }});
        EXPECT_EQ(silent.getOSDiskHandleForKoVMDisk("arr0_17", m_name), status);
        EXPECT_LT(probe->largest(), longLine);
    }
    std::optional<AllocationProbe> probe;
    m_tools.answer({pathCommand, 0, table, [&] { probe.emplace(); }});
    m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name);
    EXPECT_GT(probe->largest(), longLine); // With a log the lines are joined for its message.
}

TEST_F(KoDmpMapping, LinesAreJoinedOnceAndForALogOnly)
{
    const Lines lines(1000, "a line with memory of its own");
    const auto allocations = [&](CKoDMPSupport& support, int status) {
        std::optional<AllocationProbe> probe;
        m_tools.answer({pathCommand, status, lines, [&] { probe.emplace(); }});
        support.getOSDiskHandleForKoVMDisk("arr0_17", m_name);
        return probe->made();
    };
    CKoDMPSupport silent;
    CKoDMPSupport traced;
    traced.registerTraceLog(new CZeTraceLog);
    for (const int status : {0, 1})
        EXPECT_EQ(allocations(traced, status), allocations(silent, status) + 1) << status;
}

TEST_F(KoDmpMapping, ResultsDoNotDependOnTracing)
{
    CKoDMPSupport silent;
    m_tools.answer(pathCommand, 1).answer(pathCommand, 0).answer(pathCommand, 0, {"NAME", "="});
    for (int run = 0; run < 3; ++run)
        EXPECT_EQ(silent.getOSDiskHandleForKoVMDisk("arr0_17", m_name), 1);
}

} // namespace
