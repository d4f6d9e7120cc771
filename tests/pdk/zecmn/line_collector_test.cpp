#include "pdk/zecmn/line_collector.h"

#include <gtest/gtest.h>

using koze_pdk_4_4::runner::Budget;
using koze_pdk_4_4::runner::cost;
using koze_pdk_4_4::runner::keepBeginning;
using koze_pdk_4_4::runner::LineCollector;

namespace {

using Lines = std::vector<std::string>;

constexpr Budget ample{1000, 100};

Lines collected(const std::vector<std::string>& pieces, Budget& budget)
{
    Lines lines;
    LineCollector collector(lines, budget);
    for (const std::string& piece : pieces)
        collector.add(piece);
    collector.finish();
    return lines;
}

Lines collected(const std::vector<std::string>& pieces)
{
    Budget budget = ample;
    return collected(pieces, budget);
}

TEST(LineCollector, CutsAtEveryLineEnd)
{
    EXPECT_EQ(collected({""}), Lines());
    EXPECT_EQ(collected({"\n"}), Lines({""}));
    EXPECT_EQ(collected({"a\n"}), Lines({"a"}));
    EXPECT_EQ(collected({"a\n\nb\n"}), Lines({"a", "", "b"}));
}

TEST(LineCollector, DeliversALastLineWithoutALineEnd)
{
    EXPECT_EQ(collected({"a"}), Lines({"a"}));
    EXPECT_EQ(collected({"a\nb"}), Lines({"a", "b"}));
}

TEST(LineCollector, JoinsALineThatArrivesInPieces)
{
    EXPECT_EQ(collected({"a", "", "b", "c\nd", "\n", "e\n"}), Lines({"abc", "d", "e"}));
}

TEST(LineCollector, TakesACarriageReturnBeforeALineEndForAPartOfIt)
{
    EXPECT_EQ(collected({"a\r\nb\r", "\n\r\n"}), Lines({"a", "b", ""}));
}

TEST(LineCollector, KeepsEveryOtherCarriageReturn)
{
    EXPECT_EQ(collected({"\ra\rb\r\r\nc\r"}), Lines({"\ra\rb\r", "c\r"}));
}

TEST(LineCollector, KeepsNulBytes)
{
    EXPECT_EQ(collected({std::string("a\0b\n\0", 5)}),
              Lines({std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST(LineCollector, AddsToTheLinesThatAreThere)
{
    Lines lines = {"before"};
    Budget budget = ample;
    LineCollector(lines, budget).add("a\n");
    EXPECT_EQ(lines, Lines({"before", "a"}));
}

TEST(LineCollector, TakesALineOfTheLongestLengthAndNoneLonger)
{
    for (const std::string end : {"", "\n", "\r\n"}) {
        Budget budget{1000, 3};
        EXPECT_EQ(collected({"abc" + end}, budget), Lines({"abc"}));
        EXPECT_FALSE(budget.exceeded);
        EXPECT_EQ(collected({"abcd" + end}, budget), Lines());
        EXPECT_TRUE(budget.exceeded);
    }
}

TEST(LineCollector, CountsTheLengthOfALineThatArrivesInPieces)
{
    for (const std::string end : {"", "\n"}) {
        Budget budget{1000, 3};
        EXPECT_EQ(collected({"a", "bc" + end}, budget), Lines({"abc"}));
        EXPECT_FALSE(budget.exceeded);
        EXPECT_EQ(collected({"ab", "cd" + end}, budget), Lines());
        EXPECT_TRUE(budget.exceeded);
    }
}

TEST(LineCollector, CountsNoPartOfALineEnd)
{
    for (const auto& pieces : std::vector<std::vector<std::string>>{
             {"a", "bc\r\n"}, {"abc", "\r\n"}, {"abc\r", "\n"}, {"abc", "\r", "\n"}}) {
        Budget budget{1000, 3};
        EXPECT_EQ(collected(pieces, budget), Lines({"abc"}));
        EXPECT_FALSE(budget.exceeded);
    }
}

TEST(LineCollector, CountsEveryOtherCarriageReturn)
{
    for (const auto& pieces : std::vector<std::vector<std::string>>{
             {"abc\r"}, {"abc", "\r"}, {"abc\r", "d\n"}, {"abc\r", "\r\n"}, {"abc", "\r\r\n"}}) {
        Budget budget{1000, 3};
        EXPECT_EQ(collected(pieces, budget), Lines());
        EXPECT_TRUE(budget.exceeded);
    }
}

TEST(LineCollector, HoldsNoMoreOfALineThanItMayHave)
{
    Budget budget{1000, 3};
    Lines lines;
    LineCollector collector(lines, budget);
    collector.add("ab");
    collector.add("cd");
    EXPECT_FALSE(budget.exceeded);
    collector.add("e");
    EXPECT_TRUE(budget.exceeded);
}

TEST(LineCollector, CountsEveryLineWithItsString)
{
    EXPECT_EQ(cost("abc"), 3 + sizeof(std::string));
    Budget budget{2 * cost("") + 1, 100};
    EXPECT_EQ(collected({"a\n\n"}, budget), Lines({"a", ""}));
    EXPECT_FALSE(budget.exceeded);
    EXPECT_EQ(budget.bytesLeft, 0);
    EXPECT_EQ(collected({"\n"}, budget), Lines());
    EXPECT_TRUE(budget.exceeded);
}

TEST(LineCollector, DropsEverythingPastTheBudget)
{
    Budget budget{1000, 3};
    EXPECT_EQ(collected({"a\nlong\nb\n", "c\n", "d"}, budget), Lines({"a"}));
}

TEST(LineCollector, SharesTheBudgetOfItsRun)
{
    Budget budget{2 * cost("a"), 100};
    EXPECT_EQ(collected({"a\n"}, budget), Lines({"a"}));
    EXPECT_EQ(collected({"b\nc\n"}, budget), Lines({"b"}));
    EXPECT_TRUE(budget.exceeded);
}

TEST(LineCollector, DropsItsLastLineWhereAnotherOfItsRunIsPastTheBudget)
{
    Budget budget = ample;
    Lines output;
    Lines errors;
    LineCollector first(output, budget);
    first.add("a\nb");
    LineCollector(errors, budget).add(std::string(ample.longestLine + 1, 'c') + "\n");
    first.finish();
    EXPECT_EQ(output, Lines({"a"}));
    EXPECT_EQ(errors, Lines());
}

TEST(KeepBeginning, KeepsTheLinesThatFit)
{
    const Lines all = {"before", "a", "bc", "d"};
    Lines lines = all;
    keepBeginning(lines, 1, cost("a") + cost("bc") + cost("d"));
    EXPECT_EQ(lines, all);
    keepBeginning(lines, 1, cost("a") + cost("bc"));
    EXPECT_EQ(lines, Lines({"before", "a", "bc"}));
    keepBeginning(lines, 1, cost("a") + cost("bc") - 1);
    EXPECT_EQ(lines, Lines({"before", "a"}));
    keepBeginning(lines, 1, 0);
    EXPECT_EQ(lines, Lines({"before"}));
}

TEST(KeepBeginning, GivesTheMemoryBack)
{
    Lines lines(1000, "line");
    keepBeginning(lines, 0, 2 * cost("line"));
    EXPECT_LT(lines.capacity(), 100);
}

} // namespace
