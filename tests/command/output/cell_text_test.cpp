#include "output/cell_text.h"

#include <gtest/gtest.h>

using command::cellText;
using command::Seconds;
using command::Steps;

namespace {

TEST(CellText, ShowsEachKindOfFieldInItsWay)
{
    EXPECT_EQ(cellText({}), "-");
    EXPECT_EQ(cellText(true), "yes");
    EXPECT_EQ(cellText(false), "no");
    EXPECT_EQ(cellText(std::int64_t{4294967295}), "4294967295");
    EXPECT_EQ(cellText(Seconds(1.2346)), "1.235");
    EXPECT_EQ(cellText("a\tb"), "a\tb");
    EXPECT_EQ(cellText(command::Texts{"a", "b c"}), "a,b c");
    EXPECT_EQ(cellText(command::Texts{}), "-");
    EXPECT_EQ(cellText(command::Mark{"offline", command::Tone::bad}), "offline");
    EXPECT_EQ(cellText(command::Flag{true, command::Tone::good}), "yes");
}

TEST(CellText, ACommandMayBePastedIntoAShell)
{
    const std::string line = "tool   getdmpnode  nodename=sd$(x)";
    EXPECT_EQ(cellText(command::CommandLine{line}), "tool   getdmpnode  'nodename=sd$(x)'");
    EXPECT_EQ(cellText(Steps{{line, 1, Seconds(0.5)}}),
              "tool   getdmpnode  'nodename=sd$(x)' (0.500 s, 1)");
    EXPECT_EQ(cellText("/dev/sd$(x)"), "/dev/sd$(x)");
}

TEST(CellText, ShowsTheStepsOfATimeline)
{
    EXPECT_EQ(cellText(Steps{}), "");
    EXPECT_EQ(cellText(Steps{{"a  b", 0, Seconds(1)}, {"", {}, Seconds(5)}, {"c", {}, Seconds(0)}}),
              "a  b (1.000 s, 0); wait (5.000 s); c (0.000 s, not run)");
}

} // namespace
