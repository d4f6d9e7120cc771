// Reading the tables that map disk names to nodes and nodes to their best path.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "ko_dmp_mapping.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char noOutput[] = "2 Warning - no output of command.";
constexpr char invalidOutput[] = "2 Warning - no valid output of command.";
constexpr char noPath[] = "2 Unable to get enabled disk path for dmp node 'arr0_17'";

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
    EXPECT_EQ(nodeIn({"  DMPNODENAME", "=", "arr0_17"}), "arr0_17");
}

TEST_F(KoDmpMapping, TheSecondLineIsNeverRead)
{
    EXPECT_EQ(nodeIn({"NAME", "arr0_16 ENABLED", "arr0_17 ENABLED"}), "arr0_17");
    EXPECT_EQ(pathIn({"NAME", "sdb ENABLED(A)", "sdc ENABLED"}), "sdc");
}

TEST_F(KoDmpMapping, BlankRowsAreSkipped)
{
    EXPECT_EQ(nodeIn({"NAME", "=", "", " \t", "\n", "arr0_17"}), "arr0_17");
    EXPECT_EQ(nodeIn({"NAME", "=", "", " "}), "");
    EXPECT_EQ(pathIn({"NAME", "=", "", " \n\t", "sdb ENABLED", ""}), "sdb");
}

TEST_F(KoDmpMapping, ColumnsStandBetweenRunsOfBlanksTabsAndLineEnds)
{
    EXPECT_EQ(pathIn({"NAME\n", "=\n", "\t sdb \t\t ENABLED(A)\tPRIMARY\n"}), "sdb");
}

TEST_F(KoDmpMapping, ACarriageReturnBelongsToTheColumn)
{
    EXPECT_EQ(nodeIn({"NAME\r", "=\r", "arr0_17\r"}), "arr0_17\r");
}

TEST_F(KoDmpMapping, ARowOfANameAloneIsANodeButNoPath)
{
    EXPECT_EQ(nodeIn({"NAME", "=", "arr0_17"}), "arr0_17");
    EXPECT_EQ(pathIn({"NAME", "=", "sdb"}), "1 ");
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

} // namespace
