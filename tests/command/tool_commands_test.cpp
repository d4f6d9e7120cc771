#include "command/tool_commands.h"

#include "tests/support/scripted_tools.h"

namespace {

/// Any command that were run would fail the test: the script is empty.
class ToolCommands : public testing::Test {
    ScriptedTools m_tools;
};

TEST_F(ToolCommands, AreThoseOfTheLibrary)
{
    EXPECT_EQ(command::nodeQuery("sdc"), "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_EQ(command::pathQuery("arr0_17"),
              "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17");
    EXPECT_EQ(command::removal("arr0_17"), "/usr/sbin/kodisk   rm arr0_17");
    EXPECT_EQ(command::rescan({"sdc", "sdd"}), "/usr/sbin/kodisk   scandisks  device=sdc,sdd");
    EXPECT_EQ(command::rescan({}), "/usr/sbin/kodisk   scandisks ");
}

TEST_F(ToolCommands, HoldNamesAsTheyAre)
{
    EXPECT_EQ(command::removal("a;b $(c)\n%s"), "/usr/sbin/kodisk   rm a;b $(c)\n%s");
}

} // namespace
