#include "cli/column_list.h"

#include <gmock/gmock.h>

#include "cli/usage_error.h"

using command::chosenColumns;
using command::Heading;

namespace {

const std::vector<Heading> all{{"NAME"},      {"OWNER"}, {"CLAIM"},
                               {"PARTITION"}, {"DISK"},  {"PARTNUM"}};

std::string chosen(std::string_view list)
{
    return command::namesOf(chosenColumns(list, {{"DISK"}}, all));
}

std::string complaint(std::string_view list)
{
    try {
        return "none, but " + chosen(list);
    } catch (const command::UsageError& error) {
        return error.what();
    }
}

TEST(ColumnList, AListChoosesColumnsAndTheirOrder)
{
    EXPECT_EQ(chosen("PARTNUM"), "PARTNUM");
    EXPECT_EQ(chosen("PARTNUM,NAME,OWNER"), "PARTNUM, NAME, OWNER");
}

TEST(ColumnList, UpperAndLowerCaseAreTheSame)
{
    EXPECT_EQ(chosen("name,Claim"), "NAME, CLAIM");
}

TEST(ColumnList, APlusAddsToTheUsualOnes)
{
    EXPECT_EQ(chosen("+PARTNUM"), "DISK, PARTNUM");
    EXPECT_EQ(chosen("+name,owner"), "DISK, NAME, OWNER");
}

TEST(ColumnList, AColumnIsShownOnce)
{
    EXPECT_EQ(chosen("NAME,name"), "NAME");
    EXPECT_EQ(chosen("+DISK,NAME"), "DISK, NAME");
}

TEST(ColumnList, AnUnknownHeadingIsAnErrorThatNamesTheKnownOnes)
{
    EXPECT_EQ(complaint("NAME,SIZE"), "unknown column 'SIZE'; there are NAME, OWNER, CLAIM, "
                                      "PARTITION, DISK, PARTNUM");
    EXPECT_EQ(complaint("NAME "), "unknown column 'NAME '; there are NAME, OWNER, CLAIM, "
                                  "PARTITION, DISK, PARTNUM");
    EXPECT_THAT(complaint("NAM"), testing::HasSubstr("'NAM'"));
    EXPECT_THAT(complaint("NAME+"), testing::HasSubstr("'NAME+'"));
}

TEST(ColumnList, AnEmptyListIsAnErrorThatNamesTheColumns)
{
    EXPECT_EQ(complaint(""), "the list of columns is empty; there are NAME, OWNER, CLAIM, "
                             "PARTITION, DISK, PARTNUM");
}

TEST(ColumnList, AMissingHeadingIsAnError)
{
    for (const char* list : {"+", ",", "NAME,", ",NAME", "NAME,,DISK"})
        EXPECT_THAT(complaint(list), testing::StartsWith("the list of columns lacks a heading"))
            << list;
}

} // namespace
