#include "output/columns.h"

#include <gtest/gtest.h>

using command::Columns;
using command::Field;
using command::Heading;

namespace {

struct Answer {
    std::string name;
    bool isOwned;
};

const Columns<Answer> columns{
    {{"NAME"}, [](const Answer& answer) -> Field { return answer.name; }},
    {{"IS_OWNED"}, [](const Answer& answer) -> Field { return answer.isOwned; }},
};

TEST(Columns, TheKeyIsTheNameInLowerCase)
{
    EXPECT_EQ(Heading{"PARTNUM"}.key(), "partnum");
    EXPECT_EQ(Heading{"A_Z-9"}.key(), "a_z-9");
}

TEST(Columns, HeadingsAreThoseOfTheColumnsInOrder)
{
    EXPECT_EQ(command::namesOf(command::headingsOf(columns)), "NAME, IS_OWNED");
    EXPECT_EQ(command::namesOf({}), "");
}

TEST(Columns, ColumnsComeInTheOrderOfTheHeadings)
{
    const Columns<Answer> chosen = command::columnsUnder({{"IS_OWNED"}, {"NAME"}}, columns);
    ASSERT_EQ(chosen.size(), 2U);
    EXPECT_TRUE(std::get<bool>(chosen[0].value({"x", true})));
    EXPECT_EQ(std::get<std::string>(chosen[1].value({"x", true})), "x");
}

} // namespace
