#include "command/columns.h"

#include <gmock/gmock.h>

#include "command/usage_error.h"

using command::chosenColumns;
using command::deviceColumns;
using command::diskColumns;
using command::headings;

namespace {

std::string chosen(std::string_view list)
{
    return headings(chosenColumns(list, diskColumns().usual, diskColumns().all));
}

std::string complaint(std::string_view list)
{
    try {
        return "none, but " + chosen(list);
    } catch (const command::UsageError& error) {
        return error.what();
    }
}

TEST(Columns, AListChoosesColumnsAndTheirOrder)
{
    EXPECT_EQ(chosen("PARTNUM"), "PARTNUM");
    EXPECT_EQ(chosen("PARTNUM,NAME,OWNER"), "PARTNUM, NAME, OWNER");
}

TEST(Columns, UpperAndLowerCaseAreTheSame)
{
    EXPECT_EQ(chosen("name,Claim"), "NAME, CLAIM");
}

TEST(Columns, APlusAddsToTheUsualOnes)
{
    EXPECT_EQ(chosen("+PARTNUM"), "DISK, PARTNUM");
    EXPECT_EQ(chosen("+name,owner"), "DISK, NAME, OWNER");
}

TEST(Columns, AColumnIsShownOnce)
{
    EXPECT_EQ(chosen("NAME,name"), "NAME");
    EXPECT_EQ(chosen("+DISK,NAME"), "DISK, NAME");
}

TEST(Columns, AnUnknownHeadingIsAnErrorThatNamesTheKnownOnes)
{
    EXPECT_EQ(complaint("NAME,SIZE"), "unknown column 'SIZE'; there are NAME, OWNER, CLAIM, "
                                      "PARTITION, DISK, PARTNUM");
    EXPECT_EQ(complaint("NAME "), "unknown column 'NAME '; there are NAME, OWNER, CLAIM, "
                                  "PARTITION, DISK, PARTNUM");
    EXPECT_THAT(complaint("NAM"), testing::HasSubstr("'NAM'"));
    EXPECT_THAT(complaint("NAME+"), testing::HasSubstr("'NAME+'"));
}

TEST(Columns, AMissingHeadingIsAnError)
{
    for (const char* list : {"", "+", ",", "NAME,", ",NAME", "NAME,,DISK"})
        EXPECT_THAT(complaint(list), testing::StartsWith("the list of columns lacks a heading"))
            << list;
}

TEST(Columns, AllColumnsOfADeviceAreUsual)
{
    EXPECT_EQ(headings(deviceColumns().usual), "NAME, OWNER, CLAIM, PARTITION, DISK, PARTNUM");
}

} // namespace
