#include "command/row_writer.h"

#include <gtest/gtest.h>

namespace {

using command::cellText;
using command::Column;
using command::Row;

constexpr char line[] = "tool   getdmpnode  nodename=sd$(x)";

TEST(CellText, ACommandMayBePastedIntoAShell)
{
    const Column column{"COMMAND", "command", Column::Kind::command};
    EXPECT_EQ(cellText({{"command", line}}, column), "tool   getdmpnode  'nodename=sd$(x)'");
    EXPECT_EQ(cellText({{"command", nullptr}}, column), "-");
}

TEST(CellText, OtherFieldsAreTextsUnaltered)
{
    EXPECT_EQ(cellText({{"name", "/dev/sd$(x)"}}, {"NAME", "name"}), "/dev/sd$(x)");
}

TEST(CellText, ACommandOfATimelineMayBePastedIntoAShell)
{
    const Row steps{{{"command", line}, {"seconds", 0.5}, {"result", 1}}, {{"wait", 5.0}}};
    EXPECT_EQ(cellText(steps), "tool   getdmpnode  'nodename=sd$(x)' (0.500 s, 1); wait (5.000 s)");
}

} // namespace
