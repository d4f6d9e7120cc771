// The lookup that waits for the mapping to be repaired, and what it has in common with the lookup
// that refreshes the mapping.
#include <gmock/gmock.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "ko_dmp_retry.h"
#include "tests/support/throwing_log.h"

using testing::ElementsAre;

namespace {

using namespace std::chrono_literals;

TEST_F(KoDmpRetry, TheWaitingLookupThatSucceedsAtOnceNeitherWaitsNorRescans)
{
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_EQ(m_node, "arr0_17");
    EXPECT_THAT(m_tools.events, ElementsAre(lookup));
    EXPECT_THAT(trace(),
                ElementsAre("> getKoVMDiskForOSDiskHandler_Waited", "> getKoVMDiskForOSDiskHandler",
                            "< getKoVMDiskForOSDiskHandler_Waited"));
}

TEST_F(KoDmpRetry, TheWaitingLookupWaitsAndRescansTheDiskAfterEachFailure)
{
    lookupFails();
    answers(rescanDisk);
    lookupFails();
    answers(rescanDisk, 5); // Its failure is ignored.
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_EQ(m_node, "arr0_17");
    EXPECT_THAT(m_tools.events,
                ElementsAre(lookup, "sleep 5", rescanDisk, lookup, "sleep 5", rescanDisk, lookup));
    EXPECT_THAT(trace(),
                ElementsAre("> getKoVMDiskForOSDiskHandler_Waited", "> getKoVMDiskForOSDiskHandler",
                            "6 Obtaining dmp nodes failed. need to retry.", "> kovmScanDisks",
                            "> getKoVMDiskForOSDiskHandler",
                            "6 Obtaining dmp nodes failed. need to retry.", "> kovmScanDisks",
                            "> getKoVMDiskForOSDiskHandler",
                            "< getKoVMDiskForOSDiskHandler_Waited"));
}

TEST_F(KoDmpRetry, TheWaitingLookupGivesUpAfterFourAttemptsAndALastRescan)
{
    Lines events;
    Lines lines{"> getKoVMDiskForOSDiskHandler_Waited"};
    for (int attempt = 0; attempt < 4; ++attempt) {
        lookupFails();
        answers(rescanDisk);
        for (const char* event : {lookup, "sleep 5", rescanDisk})
            events.emplace_back(event);
        for (const char* line : {"> getKoVMDiskForOSDiskHandler",
                                 "6 Obtaining dmp nodes failed. need to retry.", "> kovmScanDisks"})
            lines.emplace_back(line);
    }
    lines.emplace_back("2 Warning - obtaining dmp nodes failed even after multiple retries.");
    lines.emplace_back("< getKoVMDiskForOSDiskHandler_Waited");
    EXPECT_EQ(waited(), 1);
    EXPECT_EQ(m_node, "");
    EXPECT_EQ(m_tools.events, events);
    EXPECT_EQ(trace(), lines);
}

TEST_F(KoDmpRetry, OutputWithoutATableEndsTheWaitingLookupWithAnEmptyName)
{
    m_tools.answer(lookup, 0, {"no", "table"});
    EXPECT_EQ(waited(), 0);
    EXPECT_EQ(m_node, "");
    EXPECT_THAT(m_tools.events, ElementsAre(lookup));
}

TEST_F(KoDmpRetry, NoOutputAtAllIsAFailureToRetry)
{
    answers(lookup);
    answers(rescanDisk);
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, "sleep 5", rescanDisk, lookup));
}

TEST_F(KoDmpRetry, AnExceptionEndsTheWaitingLookup)
{
    m_tools.answer({lookup, 0, {}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(waited(), std::bad_alloc);
    EXPECT_THAT(m_tools.events, ElementsAre(lookup));
    EXPECT_THAT(trace(),
                ElementsAre("> getKoVMDiskForOSDiskHandler_Waited", "> getKoVMDiskForOSDiskHandler",
                            "< getKoVMDiskForOSDiskHandler_Waited"));
}

TEST_F(KoDmpRetry, AnInterruptedPauseIsSleptToItsEnd)
{
    m_tools.sleepsLeaveOver = {3s};
    lookupFails();
    answers(rescanDisk);
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, "sleep 5", "sleep 3", rescanDisk, lookup));
}

TEST_F(KoDmpRetry, AHostWithATimerDoesNotShortenThePause)
{
    m_tools.sleepsLeaveOver = {4990ms, 4980ms, 1000ms, 10ms};
    lookupFails();
    answers(rescanDisk);
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, "sleep 5", "sleep 5", "sleep 5", "sleep 1",
                                            rescanDisk, lookup));
}

TEST_F(KoDmpRetry, APauseThatTookTooLongIsOver)
{
    m_tools.sleepsLeaveOver = {3s};
    m_tools.afterSleep = 7s; // The process was stopped meanwhile.
    lookupFails();
    answers(rescanDisk);
    lookupFinds("arr0_17");
    EXPECT_EQ(waited(), 0);
    EXPECT_THAT(m_tools.events, ElementsAre(lookup, "sleep 5", rescanDisk, lookup));
}

TEST_F(KoDmpRetry, TheOldNodeIsGoneBeforeALookupBegins)
{
    m_support.registerTraceLog(throwingLog("Entering Function getKoVMDiskForOSDiskHandler ["));
    EXPECT_THROW(waited(), std::domain_error);
    EXPECT_EQ(m_node, "");
    m_node = "old";
    EXPECT_THROW(refreshed(), std::domain_error);
    EXPECT_EQ(m_node, "");
}

TEST_F(KoDmpRetry, TheOldNodeIsKeptUntilTheLookupIsDue)
{
    m_support.registerTraceLog(throwingLog("Entering Function getKoVMDiskForOSDiskHandler_"));
    EXPECT_THROW(waited(), std::domain_error);
    EXPECT_EQ(m_node, "old");
    m_support.registerTraceLog(throwingLog("We will remove"));
    EXPECT_THROW(refreshed(), std::domain_error);
    EXPECT_EQ(m_node, "old");
}

TEST_F(KoDmpRetry, ResultsDoNotDependOnTracing)
{
    CKoDMPSupport silent;
    for (int attempt = 0; attempt < 4; ++attempt) {
        lookupFails();
        answers(rescanDisk);
    }
    EXPECT_EQ(silent.getKoVMDiskForOSDiskHandler_Waited("sdc", m_node), 1);
    lookupFinds("arr0_17");
    answers(removal);
    answers(rescanAll);
    lookupFinds("arr0_18");
    EXPECT_EQ(silent.getKoVMDiskForOSDiskHandler_Refreshed("sdc", m_node), 0);
    EXPECT_EQ(m_node, "arr0_18");
}

} // namespace
