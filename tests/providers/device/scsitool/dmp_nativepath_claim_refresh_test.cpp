// Removals, rescans, and the lookup that makes the volume manager build its mapping anew by both.
#include <gmock/gmock.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "ko_dmp_retry.h"
#include "pdk/include/czeexecpipe.h"

using koze_pdk_4_4::EZeExecPipe;
using testing::ElementsAre;

namespace {

constexpr char removing[] =
    "6 We will remove dmp node from kovm and rescan to regenerate dmp node for disk [sdc].";

TEST_F(KoDmpRetry, ARemovalNamesTheNode)
{
    answers(removal);
    EXPECT_EQ(m_support.removeDisksFromKoVM("arr0_17"), 0);
    EXPECT_THAT(outline(m_log.takeLines(), file),
                ElementsAre("> removeDisksFromKoVM", "> executeCommand",
                            "3 ExecuteCommand command: /usr/sbin/kodisk   rm arr0_17",
                            "< executeCommand", "< removeDisksFromKoVM"));
}

TEST_F(KoDmpRetry, AFailedRemovalIsTracedAndNotReported)
{
    answers(removal, 5);
    EXPECT_EQ(m_support.removeDisksFromKoVM("arr0_17"), 0);
    EXPECT_THAT(trace(), ElementsAre("> removeDisksFromKoVM", "> executeCommand",
                                     "2 Warning - removing disk from kovm db is failed.",
                                     "< removeDisksFromKoVM"));
}

TEST_F(KoDmpRetry, ARemovalThatCannotBeRunIsNotReportedEither)
{
    m_tools.answer({removal, 0, {}, [] { throw EZeExecPipe("missing"); }});
    EXPECT_EQ(m_support.removeDisksFromKoVM("arr0_17"), 0);
}

struct Rescan {
    Lines names;
    const char* command;
};

TEST_F(KoDmpRetry, ARescanNamesItsDisksOrNone)
{
    const Rescan rescans[] = {
        {{}, "/usr/sbin/kodisk   scandisks "},
        {{""}, "/usr/sbin/kodisk   scandisks "},
        {{"sdb"}, "/usr/sbin/kodisk   scandisks  device=sdb"},
        {{"sdb", "sdc"}, "/usr/sbin/kodisk   scandisks  device=sdb,sdc"},
        {{"", "sdc"}, "/usr/sbin/kodisk   scandisks  device=,sdc"},
        {{"sdb", "", "sdd"}, "/usr/sbin/kodisk   scandisks  device=sdb,,sdd"},
        {{"", ""}, "/usr/sbin/kodisk   scandisks  device=,"},
    };
    for (const Rescan& rescan : rescans) {
        answers(rescan.command);
        EXPECT_EQ(m_support.kovmScanDisks(rescan.names), 0);
        EXPECT_THAT(trace(), ElementsAre("> kovmScanDisks", "> executeCommand", "< kovmScanDisks"));
    }
}

TEST_F(KoDmpRetry, AFailedRescanIsTracedWithItsCommandAndOutput)
{
    m_tools.answer(rescanDisk, 5, {"a", "b"});
    EXPECT_EQ(m_support.kovmScanDisks({"sdc"}), 1);
    EXPECT_THAT(trace(), ElementsAre("> kovmScanDisks", "> executeCommand",
                                     "2 CKoDMPSupport::kovmScanDisks : Command [/usr/sbin/kodisk   "
                                     "scandisks  device=sdc] failed with error [ab]",
                                     "< kovmScanDisks"));
}

TEST_F(KoDmpRetry, AFailedRemovalIsNotReportedWithoutALogEither)
{
    CKoDMPSupport silent;
    m_tools.answer(removal, 5, {"why"});
    EXPECT_EQ(silent.removeDisksFromKoVM("arr0_17"), 0);
}

TEST_F(KoDmpRetry, AFailedRescanIsOneWithoutALogToo)
{
    CKoDMPSupport silent;
    answers(rescanAll, 5);
    EXPECT_EQ(silent.kovmScanDisks({}), 1);
}

TEST_F(KoDmpRetry, TheRefreshingLookupRemovesTheNodeAndRescansEveryDisk)
{
    lookupFinds("arr0_17");
    answers(removal);
    answers(rescanAll);
    lookupFinds("arr0_18");
    EXPECT_EQ(refreshed(), 0);
    EXPECT_EQ(m_node, "arr0_18");
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, removal, rescanAll, lookup));
    EXPECT_THAT(trace(), ElementsAre("> getKoVMDiskForOSDiskHandler_Refreshed", removing,
                                     "> getKoVMDiskForOSDiskHandler",
                                     "6 Obtained dmp nodes is [arr0_17].", "> removeDisksFromKoVM",
                                     "> kovmScanDisks", "> getKoVMDiskForOSDiskHandler",
                                     "6 After refresh, obtained dmp nodes is [arr0_18].",
                                     "< getKoVMDiskForOSDiskHandler_Refreshed"));
}

TEST_F(KoDmpRetry, TheRefreshingLookupRemovesNothingWhenItsFirstLookupFails)
{
    lookupFails();
    answers(rescanAll, 5); // Its failure is ignored.
    lookupFinds("arr0_17");
    EXPECT_EQ(refreshed(), 0);
    EXPECT_EQ(m_node, "arr0_17");
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, rescanAll, lookup));
    EXPECT_THAT(trace(), ElementsAre("> getKoVMDiskForOSDiskHandler_Refreshed", removing,
                                     "> getKoVMDiskForOSDiskHandler", "> kovmScanDisks",
                                     "> getKoVMDiskForOSDiskHandler",
                                     "6 After refresh, obtained dmp nodes is [arr0_17].",
                                     "< getKoVMDiskForOSDiskHandler_Refreshed"));
}

TEST_F(KoDmpRetry, TheRefreshingLookupRemovesEvenANodeWithoutAName)
{
    m_tools.answer(lookup, 0, {"NAME", "===="});
    answers("/usr/sbin/kodisk   rm ");
    answers(rescanAll);
    m_tools.answer(lookup, 0, {"NAME", "===="});
    EXPECT_EQ(refreshed(), 0);
    EXPECT_EQ(m_node, "");
    EXPECT_THAT(trace(), ElementsAre("> getKoVMDiskForOSDiskHandler_Refreshed", removing,
                                     "> getKoVMDiskForOSDiskHandler", "6 Obtained dmp nodes is [].",
                                     "> removeDisksFromKoVM", "> kovmScanDisks",
                                     "> getKoVMDiskForOSDiskHandler",
                                     "< getKoVMDiskForOSDiskHandler_Refreshed"));
}

TEST_F(KoDmpRetry, TheRefreshingLookupGoesOnAfterAFailedRemoval)
{
    lookupFinds("arr0_17");
    answers(removal, 5);
    answers(rescanAll);
    lookupFinds("arr0_17");
    EXPECT_EQ(refreshed(), 0);
    EXPECT_EQ(m_node, "arr0_17");
}

TEST_F(KoDmpRetry, TheRefreshingLookupRescansBeforeAndWaitsAfterEachAttempt)
{
    Lines events{lookup, removal};
    Lines lines{"> getKoVMDiskForOSDiskHandler_Refreshed", removing,
                "> getKoVMDiskForOSDiskHandler", "6 Obtained dmp nodes is [arr0_17].",
                "> removeDisksFromKoVM"};
    lookupFinds("arr0_17");
    answers(removal);
    for (int attempt = 0; attempt < 4; ++attempt) {
        answers(rescanAll);
        lookupFails();
        for (const char* event : {rescanAll, lookup, "sleep 10"})
            events.emplace_back(event);
        for (const char* line : {"> kovmScanDisks", "> getKoVMDiskForOSDiskHandler",
                                 "6 Obtaining dmp nodes failed. need to retry."})
            lines.emplace_back(line);
    }
    lines.emplace_back("2 Warning - obtaining dmp nodes failed even after multiple retries.");
    lines.emplace_back("< getKoVMDiskForOSDiskHandler_Refreshed");
    EXPECT_EQ(refreshed(), 1);
    EXPECT_EQ(m_node, "");
    EXPECT_EQ(m_tools.events, events);
    EXPECT_EQ(trace(), lines);
}

TEST_F(KoDmpRetry, TheRefreshingLookupMaySucceedLate)
{
    lookupFails();
    for (int attempt = 0; attempt < 3; ++attempt) {
        answers(rescanAll);
        lookupFails();
    }
    answers(rescanAll);
    lookupFinds("arr0_17");
    EXPECT_EQ(refreshed(), 0);
    EXPECT_EQ(m_node, "arr0_17");
    EXPECT_EQ(std::count(m_tools.events.begin(), m_tools.events.end(), "sleep 10"), 3);
}

TEST_F(KoDmpRetry, AnExceptionAfterTheRemovalLeavesNoOldNodeBehind)
{
    lookupFinds("arr0_17");
    answers(removal);
    m_tools.answer({rescanAll, 0, {}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(refreshed(), std::bad_alloc);
    EXPECT_EQ(m_node, "");
}

} // namespace
