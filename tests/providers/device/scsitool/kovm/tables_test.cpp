#include "kovm/tables.h"

#include <gmock/gmock.h>

namespace {

using kovm::bestPath;
using kovm::Fault;
using kovm::faultOf;
using kovm::firstNode;
using kovm::Lines;

constexpr char header[] = "NAME    STATE    TYPE    CTLR";
constexpr char rule[] = "====";
constexpr char active[] = "sda     ENABLED(A)    PRIMARY    c1";
constexpr char enabled[] = "sdb\tENABLED  SECONDARY";
constexpr char primary[] = "  sdc  DISABLED  PRIMARY  c2  more";
constexpr char lost[] = "sdd DISABLED SECONDARY";

std::vector<std::string> namesIn(const Lines& lines)
{
    std::vector<std::string> names;
    kovm::RowReader reader(lines);
    for (kovm::Row row; reader.next(row);)
        names.push_back(row.name);
    return names;
}

TEST(Tables, AHeaderAndARuleAreATable)
{
    EXPECT_EQ(faultOf({header, rule}), Fault::none);
    EXPECT_EQ(faultOf({header, rule, lost}), Fault::none);
    EXPECT_EQ(faultOf({header, header, active}), Fault::none);
    EXPECT_EQ(faultOf({"DISKNAMES", rule}), Fault::none);
}

TEST(Tables, LessIsNoOutput)
{
    EXPECT_EQ(faultOf({}), Fault::noOutput);
    EXPECT_EQ(faultOf({header}), Fault::noOutput);
}

TEST(Tables, TheHeaderIsInCapitals)
{
    EXPECT_EQ(faultOf({rule, active}), Fault::noHeader);
    EXPECT_EQ(faultOf({"name", rule, active}), Fault::noHeader);
}

TEST(Tables, TheHeaderComesFirst)
{
    EXPECT_EQ(faultOf({"note", header, rule, active}), Fault::headerNotFirst);
    EXPECT_EQ(faultOf({"note", rule, active, "NAME"}), Fault::headerNotFirst);
}

TEST(Tables, FaultsHaveWords)
{
    EXPECT_STREQ(kovm::textOf(Fault::none), "none");
    EXPECT_STREQ(kovm::textOf(Fault::noOutput), "no table");
    EXPECT_STREQ(kovm::textOf(Fault::noHeader), "no header");
    EXPECT_STREQ(kovm::textOf(Fault::headerNotFirst), "a line before the header");
}

TEST(Tables, RowsBeginBehindTheRuleAndHaveNames)
{
    EXPECT_THAT(namesIn({header, active, enabled, "", " \t\n", "sde"}),
                testing::ElementsAre("sdb", "sde"));
    EXPECT_THAT(namesIn({header, rule}), testing::IsEmpty());
    EXPECT_THAT(namesIn({header}), testing::IsEmpty());
}

TEST(Tables, ColumnsThatAreMissingAreEmpty)
{
    const Lines lines{header, rule, "sde", "sdf ENABLED", "sdg DISABLED PRIMARY c1"};
    kovm::RowReader reader(lines);
    kovm::Row row{"x", "x", "x"};
    ASSERT_TRUE(reader.next(row));
    EXPECT_EQ(row.state + row.type, "");
    ASSERT_TRUE(reader.next(row));
    EXPECT_EQ(row.state + row.type, "ENABLED");
    ASSERT_TRUE(reader.next(row));
    EXPECT_EQ(row.state + row.type, "DISABLEDPRIMARY");
}

TEST(Tables, TheNodeIsTheFirstName)
{
    EXPECT_EQ(firstNode({header, rule, "", " \t", lost, active}).name, "sdd");
    EXPECT_EQ(firstNode({header, rule}).name, "");
}

TEST(Tables, AnActivePathIsBestThenAnEnabledThenAPrimaryOne)
{
    EXPECT_EQ(bestPath({header, rule, lost, primary, enabled, active}).name, "sda");
    EXPECT_EQ(bestPath({header, rule, lost, primary, enabled}).name, "sdb");
    EXPECT_EQ(bestPath({header, rule, lost, primary}).name, "sdc");
    EXPECT_EQ(bestPath({header, rule, lost}).name, "");
}

TEST(Tables, AmongEqualsTheFirstIsBest)
{
    EXPECT_EQ(bestPath({header, rule, active, "sdz ENABLED(A)"}).name, "sda");
    EXPECT_EQ(bestPath({header, rule, enabled, "sdz ENABLED PRIMARY"}).name, "sdb");
    EXPECT_EQ(bestPath({header, rule, primary, "sdz OFFLINE PRIMARY"}).name, "sdc");
}

TEST(Tables, MarksCountAnywhereInTheirColumns)
{
    EXPECT_EQ(bestPath({header, rule, "sdy NOTENABLED(A) x", "sdz ENABLED(A) x"}).name, "sdy");
    EXPECT_EQ(bestPath({header, rule, "sdz FAILED SECONDARY,PRIMARY"}).name, "sdz");
    EXPECT_EQ(bestPath({header, rule, "sde", "sdf PRIMARY", lost}).name, "");
}

TEST(Tables, APathIsEnabledByItsState)
{
    EXPECT_TRUE(bestPath({header, rule, primary, active}).isEnabled());
    EXPECT_TRUE(bestPath({header, rule, primary, enabled}).isEnabled());
    EXPECT_FALSE(bestPath({header, rule, primary, lost}).isEnabled());
}

TEST(Tables, JoinedLinesHaveNothingBetweenThem)
{
    EXPECT_EQ(kovm::joined({}), "");
    EXPECT_EQ(kovm::joined({"a", "", "b c"}), "ab c");
}

} // namespace
