// Removals, rescans and the lookups that wait for a mapping to be repaired.
#include <gmock/gmock.h>

#include <new>
#include <stdexcept>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::EZeExecPipe;
using testing::ElementsAre;

namespace {

using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

constexpr char file[] = "dmp_nativepath_claim.cpp";
constexpr char lookup[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char rescanDisk[] = "/usr/sbin/kodisk   scandisks  device=sdc";
constexpr char rescanAll[] = "/usr/sbin/kodisk   scandisks ";
constexpr char removal[] = "/usr/sbin/kodisk   rm arr0_17";
constexpr char removing[] =
    "6 We will remove dmp node from kovm and rescan to regenerate dmp node for disk [sdc].";

class KoDmpRetry : public testing::Test {
protected:
    KoDmpRetry() { m_support.registerTraceLog(m_log.handle()); }

    void lookupFails() { m_tools.answer(lookup, 9); }
    void lookupFinds(const std::string& node)
    {
        m_tools.answer(lookup, 0, {"NAME STATE", "====", node});
    }
    void answers(const char* command, int status = 0) { m_tools.answer(command, status); }

    int waited() { return m_support.getKoVMDiskForOSDiskHandler_Waited("sdc", m_node); }
    int refreshed() { return m_support.getKoVMDiskForOSDiskHandler_Refreshed("sdc", m_node); }

    /// The lines that the operation itself wrote, and the names of the operations that it called.
    Lines trace()
    {
        Lines own;
        int depth = 0;
        for (const std::string& line : outline(m_log.takeLines(), file)) {
            const bool enters = line.rfind("> ", 0) == 0;
            const bool exits = line.rfind("< ", 0) == 0;
            depth -= exits ? 1 : 0;
            if (depth <= 1 && !(exits && depth == 1))
                own.push_back(line);
            depth += enters ? 1 : 0;
        }
        return own;
    }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CKoDMPSupport m_support;
    std::string m_node = "old";
};

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

/// A log that throws at a line which begins with `line`.
CZeTraceLogHandle throwingAt(const std::string& line)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(6, [line](int, std::string_view text) {
        if (text.substr(0, line.size()) == line)
            throw std::runtime_error("log");
    }));
    return log;
}

TEST_F(KoDmpRetry, TheOldNodeIsGoneBeforeALookupBegins)
{
    m_support.registerTraceLog(throwingAt("Entering Function getKoVMDiskForOSDiskHandler ["));
    EXPECT_THROW(waited(), std::runtime_error);
    EXPECT_EQ(m_node, "");
    m_node = "old";
    EXPECT_THROW(refreshed(), std::runtime_error);
    EXPECT_EQ(m_node, "");
}

TEST_F(KoDmpRetry, TheOldNodeIsKeptUntilTheLookupIsDue)
{
    m_support.registerTraceLog(throwingAt("Entering Function getKoVMDiskForOSDiskHandler_"));
    EXPECT_THROW(waited(), std::runtime_error);
    EXPECT_EQ(m_node, "old");
    m_support.registerTraceLog(throwingAt("We will remove"));
    EXPECT_THROW(refreshed(), std::runtime_error);
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
