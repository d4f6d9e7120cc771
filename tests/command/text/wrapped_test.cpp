#include "text/wrapped.h"

#include <clocale>
#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/support/terminal.h"

namespace {

using command::reflowed;
using command::wrapped;

TEST(Wrapped, ALineEndsAtColumn79)
{
    const std::string start(70, 'x');
    EXPECT_EQ(wrapped(start + " 12345678", 0), start + " 12345678");
    EXPECT_EQ(wrapped(start + " 123456789", 0), start + "\n123456789");
}

TEST(Wrapped, TheIndentCountsOnEveryLineAndIsWrittenOnAllButTheFirst)
{
    const std::string word(40, 'x');
    const std::string broken = "\n         " + word;
    EXPECT_EQ(wrapped(word + ' ' + word + ' ' + word, 9), word + broken + broken);
}

TEST(Wrapped, BlanksWithinALineStay)
{
    EXPECT_EQ(wrapped("kodmpadm   getdmpnode  nodename=sdc", 9),
              "kodmpadm   getdmpnode  nodename=sdc");
}

TEST(Wrapped, NoBlanksAreLeftWhereALineEnds)
{
    const std::string start(75, 'x');
    EXPECT_EQ(wrapped(start + "   y   z", 0), start + "   y\nz");
    EXPECT_EQ(wrapped(start + "    y", 2), start + "\n  y");
    EXPECT_EQ(wrapped("x   ", 0), "x");
    EXPECT_EQ(wrapped("  x", 0), "  x");
}

TEST(Wrapped, AWordThatFitsNoLineGetsItsOwn)
{
    const std::string word(100, 'x');
    EXPECT_EQ(wrapped("of " + word + " and", 2), "of\n  " + word + "\n  and");
    EXPECT_EQ(wrapped(word, 2), word);
}

TEST(Wrapped, NothingStaysNothing)
{
    EXPECT_EQ(wrapped("", 9), "");
}

TEST(Wrapped, WideCharactersCountTheirCells)
{
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(wrapped("\u6f22\u5b57 ab", 0, 7), "\u6f22\u5b57 ab");
    EXPECT_EQ(wrapped("\u6f22\u5b57 ab", 0, 6), "\u6f22\u5b57\nab");
    std::setlocale(LC_CTYPE, "C");
}

TEST(Reflowed, TheLinesOfAParagraphAreBrokenAnew)
{
    EXPECT_EQ(reflowed("one two\nthree\n\nfour", 20), "one two three\n\nfour\n");
    EXPECT_EQ(reflowed("one two\nthree\n\nfour", 7), "one two\nthree\n\nfour\n");
    EXPECT_EQ(reflowed("", 7), "");
}

TEST(Reflowed, ItemsStandByThemselvesAndAreIndented)
{
    EXPECT_EQ(reflowed("Status:\n  32  no path is claimed\n   0  all", 16),
              "Status:\n  32  no path is\n      claimed\n   0  all\n");
    EXPECT_EQ(reflowed("  dmpclaim show x y z", 16), "  dmpclaim show\n  x y z\n");
}

TEST(LineWidth, IsTheTerminalsOrTheEnvironments)
{
    const Terminal terminal({24, 47, 0, 0});
    const Terminal unknown({0, 0, 0, 0});
    setenv("COLUMNS", "60", 1);
    EXPECT_EQ(command::lineWidth(terminal.descriptor()), 47U);
    EXPECT_EQ(command::lineWidth(unknown.descriptor()), 60U);
    for (const char* odd : {"", "0", "x", "-1", "99999999999999999999999"}) {
        setenv("COLUMNS", odd, 1);
        EXPECT_EQ(command::lineWidth(-1), command::usualWidth) << odd;
    }
    unsetenv("COLUMNS");
    EXPECT_EQ(command::lineWidth(-1), command::usualWidth);
}

} // namespace
