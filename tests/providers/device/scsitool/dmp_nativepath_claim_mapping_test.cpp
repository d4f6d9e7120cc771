// Reading the tables that map disk names to nodes and nodes to their best path.
#include <gmock/gmock.h>

#include <new>
#include <optional>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/allocation_probe.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::EZeExecPipe;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Lines = std::vector<std::string>;

constexpr char file[] = "dmp_nativepath_claim.cpp";
constexpr char nodeCommand[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char pathCommand[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";
constexpr char noOutput[] = "2 Warning - no output of command.";
constexpr char invalidOutput[] = "2 Warning - no valid output of command.";
constexpr char noPath[] = "2 Unable to get enabled disk path for dmp node 'arr0_17'";

class KoDmpMapping : public testing::Test {
protected:
    KoDmpMapping() { m_support.registerTraceLog(m_log.handle()); }

    int node(const Lines& output, int status = 0)
    {
        m_tools.answer(nodeCommand, status, output);
        return m_support.getKoVMDiskForOSDiskHandler("sdc", m_name);
    }

    int path(const Lines& output, int status = 0)
    {
        m_tools.answer(pathCommand, status, output);
        return m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name);
    }

    /// The lines of an operation besides its tracer's and those of `executeCommand`.
    Lines ownTrace()
    {
        Lines own;
        int depth = 0;
        for (const std::string& line : outline(m_log.takeLines(), file)) {
            depth -= line.rfind("< ", 0) == 0 ? 1 : 0;
            if (depth == 1 && line.rfind("> ", 0) != 0 && line.rfind("< ", 0) != 0)
                own.push_back(line);
            depth += line.rfind("> ", 0) == 0 ? 1 : 0;
        }
        EXPECT_EQ(depth, 0);
        return own;
    }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CKoDMPSupport m_support;
    std::string m_name = "old";
};

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

struct BadTable {
    const char* what;
    Lines lines;
    int status;
    Lines trace;
};

const BadTable badTables[] = {
    {"no line", {}, 1, {noOutput}},
    {"the header alone", {"NAME STATE"}, 1, {noOutput}},
    {"one line without a header", {"sdc"}, 1, {noOutput}},
    {"no header anywhere", {"x", "=", "sdb ENABLED(A)"}, 0, {}},
    {"a header in small letters", {"name", "=", "sdb ENABLED(A)"}, 0, {}},
    {"a header cut short", {"NAM STATE", "=", "sdb ENABLED(A)"}, 0, {}},
    {"a note above the header", {"note", "NAME", "===", "sdb ENABLED(A)"}, 1, {invalidOutput}},
    {"a header in the last line", {"a", "=", "NAME"}, 1, {invalidOutput}},
};

TEST_F(KoDmpMapping, ATableThatIsNoneGivesNoNode)
{
    for (const BadTable& bad : badTables) {
        SCOPED_TRACE(bad.what);
        EXPECT_EQ(node(bad.lines), bad.status);
        EXPECT_EQ(m_name, "");
        EXPECT_EQ(ownTrace(), bad.trace);
    }
}

TEST_F(KoDmpMapping, ATableThatIsNoneGivesNoPath)
{
    for (const BadTable& bad : badTables) {
        SCOPED_TRACE(bad.what);
        EXPECT_EQ(path(bad.lines), bad.status);
        EXPECT_EQ(m_name, "");
        EXPECT_EQ(ownTrace(), bad.trace);
    }
}

TEST_F(KoDmpMapping, ATableWithoutRowsIsAnEmptyAnswerForANodeOnly)
{
    EXPECT_EQ(node({"NAME", "===="}), 0);
    EXPECT_EQ(m_name, "");
    EXPECT_THAT(ownTrace(), IsEmpty());
    EXPECT_EQ(path({"NAME", "===="}), 1);
    EXPECT_EQ(m_name, "");
    EXPECT_THAT(ownTrace(), ElementsAre(noPath));
}

TEST_F(KoDmpMapping, TheHeaderMayHoldItsTextAnywhere)
{
    EXPECT_EQ(node({"  DMPNODENAME", "=", "arr0_17"}), 0);
    EXPECT_EQ(m_name, "arr0_17");
}

TEST_F(KoDmpMapping, TheSecondLineIsNeverRead)
{
    EXPECT_EQ(node({"NAME", "arr0_16 ENABLED", "arr0_17 ENABLED"}), 0);
    EXPECT_EQ(m_name, "arr0_17");
    EXPECT_EQ(path({"NAME", "sdb ENABLED(A)", "sdc ENABLED"}), 0);
    EXPECT_EQ(m_name, "sdc");
}

TEST_F(KoDmpMapping, BlankRowsAreSkipped)
{
    EXPECT_EQ(node({"NAME", "=", "", " \t", "\n", "arr0_17"}), 0);
    EXPECT_EQ(m_name, "arr0_17");
    EXPECT_EQ(node({"NAME", "=", "", " "}), 0);
    EXPECT_EQ(m_name, "");
    EXPECT_EQ(path({"NAME", "=", "", " \n\t", "sdb ENABLED", ""}), 0);
    EXPECT_EQ(m_name, "sdb");
}

TEST_F(KoDmpMapping, ColumnsStandBetweenRunsOfBlanksTabsAndLineEnds)
{
    EXPECT_EQ(path({"NAME\n", "=\n", "\t sdb \t\t ENABLED(A)\tPRIMARY\n"}), 0);
    EXPECT_EQ(m_name, "sdb");
}

TEST_F(KoDmpMapping, ACarriageReturnBelongsToTheColumn)
{
    EXPECT_EQ(node({"NAME\r", "=\r", "arr0_17\r"}), 0);
    EXPECT_EQ(m_name, "arr0_17\r");
}

TEST_F(KoDmpMapping, ARowOfANameAloneIsANodeButNoPath)
{
    EXPECT_EQ(node({"NAME", "=", "arr0_17"}), 0);
    EXPECT_EQ(m_name, "arr0_17");
    EXPECT_EQ(path({"NAME", "=", "sdb"}), 1);
    EXPECT_EQ(m_name, "");
}

struct Choice {
    const char* what;
    Lines rows;
    const char* chosen;
};

TEST_F(KoDmpMapping, TheBestPathIsActiveThenEnabledThenPrimary)
{
    const Choice choices[] = {
        {"active after enabled",
         {"sdb ENABLED SECONDARY c1", "sdc ENABLED(A) PRIMARY c2", "sdd DISABLED PRIMARY c3"},
         "sdc"},
        {"enabled before primary", {"sdb ENABLED SECONDARY", "sdc ENABLED PRIMARY"}, "sdb"},
        {"first primary",
         {"sdb DISABLED SECONDARY", "sdc DISABLED PRIMARY", "sdd DISABLED PRIMARY"},
         "sdc"},
        {"enabled after primary", {"sdb DISABLED PRIMARY", "sdc ENABLED SECONDARY"}, "sdc"},
        {"two active", {"sdb ENABLED(A) PRIMARY", "sdc ENABLED(A) PRIMARY"}, "sdb"},
        {"the third wins", {"sdb ENABLED", "sdc DISABLED PRIMARY", "sdd ENABLED(A)"}, "sdd"},
        {"two enabled", {"sdb ENABLED", "sdc ENABLED"}, "sdb"},
        {"active needs no path type", {"sdb ENABLED(A)"}, "sdb"},
        {"the state may hold more", {"sdb xENABLED(A)y"}, "sdb"},
        {"so may the path type", {"sdb FAILED NONPRIMARYX"}, "sdb"},
        {"so may that of an enabled path", {"sdb FAILED PRIMARY", "sdc xENABLEDy"}, "sdc"},
        {"small letters are no state", {"sdb enabled(a) PRIMARY", "sdc ENABLED"}, "sdc"},
        {"another letter is not active", {"sdb ENABLED(B)", "sdc ENABLED(A)"}, "sdc"},
        {"nor is a mark cut short", {"sdb ENABLED(A", "sdc ENABLED(A)"}, "sdc"},
        {"nor is a mark alone", {"sdb FAILED(A) PRIMARY", "sdc ENABLED"}, "sdc"},
        {"nor is a state cut short enabled", {"sdb ENABLE", "sdc FAILED PRIMARY"}, "sdc"},
        {"a primary path in any other state", {"sdb FAILED PRIMARY"}, "sdb"},
    };
    for (const Choice& choice : choices) {
        SCOPED_TRACE(choice.what);
        Lines table{"NAME STATE TYPE CTLR", "===="};
        table.insert(table.end(), choice.rows.begin(), choice.rows.end());
        EXPECT_EQ(path(table), 0);
        EXPECT_EQ(m_name, choice.chosen);
        EXPECT_THAT(ownTrace(), IsEmpty());
    }
}

TEST_F(KoDmpMapping, ANodeWithoutAnyUsablePathFails)
{
    const Lines unusable[] = {
        {"sdb DISABLED SECONDARY"}, {"sdb PRIMARY ENABLED"}, {"ENABLED(A)"},
        {"sdb DISABLED x PRIMARY"}, {"sdb FAILED primary"},
    };
    for (const Lines& rows : unusable) {
        SCOPED_TRACE(rows.front());
        EXPECT_EQ(path({"NAME", "=", rows.front()}), 1);
        EXPECT_EQ(m_name, "");
        EXPECT_THAT(ownTrace(), ElementsAre(noPath));
    }
}

TEST_F(KoDmpMapping, NothingCarriesOverFromTheRowBefore)
{
    EXPECT_EQ(path({"NAME", "=", "sdb DISABLED SECONDARY", "sdc", "sdd FAILED"}), 1);
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
