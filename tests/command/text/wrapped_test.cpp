#include "text/wrapped.h"

#include <gtest/gtest.h>

namespace {

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

} // namespace
