#include "text/word_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using command::counted;
using command::joined;
using command::splitAtCommas;
using ::testing::ElementsAre;

TEST(WordList, ACommaAndABlankStandBetweenWords)
{
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"sda"}), "sda");
    EXPECT_EQ(joined({"sda", "sdb", "sdc"}), "sda, sdb, sdc");
}

TEST(WordList, AnotherSeparatorCanBeChosen)
{
    EXPECT_EQ(joined({"sda", "sdb"}, "; "), "sda; sdb");
}

TEST(WordList, AnEmptyWordIsSeparatedLikeOthers)
{
    EXPECT_EQ(joined({"", "sda", ""}), ", sda, ");
}

TEST(WordList, AListIsSplitAtItsCommas)
{
    EXPECT_THAT(splitAtCommas("NAME"), ElementsAre("NAME"));
    EXPECT_THAT(splitAtCommas("NAME,SIZE,OWNER"), ElementsAre("NAME", "SIZE", "OWNER"));
    EXPECT_THAT(splitAtCommas("a b, c"), ElementsAre("a b", " c"));
}

TEST(WordList, WordsBetweenCommasMayBeEmpty)
{
    EXPECT_THAT(splitAtCommas(""), ElementsAre(""));
    EXPECT_THAT(splitAtCommas(","), ElementsAre("", ""));
    EXPECT_THAT(splitAtCommas("NAME,"), ElementsAre("NAME", ""));
    EXPECT_THAT(splitAtCommas(",NAME"), ElementsAre("", "NAME"));
}

TEST(WordList, OneIsCountedInTheSingular)
{
    EXPECT_EQ(counted(0, "disk"), "0 disks");
    EXPECT_EQ(counted(1, "disk"), "1 disk");
    EXPECT_EQ(counted(2, "disk"), "2 disks");
}

} // namespace
