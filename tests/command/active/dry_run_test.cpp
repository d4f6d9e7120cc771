#include "active/dry_run.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"
#include "tests/support/scripted_tools.h"

namespace {

using Row = nlohmann::ordered_json;
using testing::ElementsAre;

/// The script is empty, so that running any command fails the test.
class DryRun : public testing::Test {
protected:
    std::vector<Row> rows(const std::string& path, bool refresh = false)
    {
        rules.refresh = refresh;
        std::vector<Row> rows;
        for (const auto& command : command::dryRun(m_manager, path, rules))
            rows.push_back(answerJson(command, command::plannedColumns()));
        return rows;
    }

    std::vector<std::string> commands(const std::string& path, bool refresh = false)
    {
        return column("command", path, refresh);
    }

    std::vector<std::string> whens(const std::string& path, bool refresh = false)
    {
        return column("when", path, refresh);
    }

    ScriptedTools tools;
    command::LookupRules rules;

private:
    std::vector<std::string> column(const char* name, const std::string& path, bool refresh)
    {
        std::vector<std::string> values;
        for (const Row& row : rows(path, refresh))
            values.push_back(row[name]);
        return values;
    }

    CDmpClaimManager m_manager;
};

TEST_F(DryRun, TheWaitingLookupsCommandsAreShownInOrder)
{
    EXPECT_THAT(commands("/dev/sdc"),
                ElementsAre("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                            "/usr/sbin/kodisk   scandisks  device=sdc",
                            "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=NODE"));
    EXPECT_THAT(tools.events, testing::Not(testing::Contains(testing::HasSubstr("kodisk"))));
}

TEST_F(DryRun, TheRefreshingLookupsCommandsAreShownInOrder)
{
    EXPECT_THAT(commands("/dev/sdc", true),
                ElementsAre("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                            "/usr/sbin/kodisk   rm NODE", "/usr/sbin/kodisk   scandisks ",
                            "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                            "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=NODE"));
}

TEST_F(DryRun, NamesAreNotAltered)
{
    EXPECT_EQ(commands("/dev/sd;rm\t-rf$HOME\n%s").front(),
              "/usr/sbin/kodmpadm   getdmpnode  nodename=sd;rm\t-rf$HOME\n%s");
}

TEST_F(DryRun, ForNamesThatTheToolsWouldMisreadNothingIsRun)
{
    const std::vector<Row> only = rows("/dev/sdc force=yes");
    ASSERT_EQ(only.size(), 1U);
    EXPECT_EQ(only[0]["owner"], "native");
    EXPECT_EQ(only[0]["command"], nullptr);
    EXPECT_EQ(only[0]["when"], "never: it holds a space, which separates the arguments of the "
                               "volume manager's tools");
}

TEST_F(DryRun, EachRowTellsThePathItsOwnerAndWhenTheCommandRuns)
{
    for (const Row& row : rows("/dev/sdc")) {
        EXPECT_EQ(row["name"], "/dev/sdc");
        EXPECT_EQ(row["owner"], "native");
    }
    EXPECT_THAT(whens("/dev/sdc"), ElementsAre("first; up to 4 times until it succeeds",
                                               "5 seconds after each failure of the line above",
                                               "when the node was found"));
    EXPECT_THAT(whens("/dev/sdc", true),
                ElementsAre("first", "when the line above succeeded",
                            "before each attempt of the line below",
                            "up to 4 times until it succeeds, 10 seconds after each failure",
                            "when the node was found"));
}

TEST_F(DryRun, APartitionsDiskIsAskedAbout)
{
    EXPECT_EQ(commands("/dev/sdc12").front(), "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    rules.asGiven = true;
    EXPECT_EQ(commands("/dev/sdc12").front(), "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc12");
}

TEST_F(DryRun, ANumberOfAttemptsIsTold)
{
    rules.tries = 2;
    EXPECT_THAT(whens("/dev/sdc"),
                ElementsAre("first; up to 2 times until it succeeds",
                            "5 seconds after each failure of the line above but the last",
                            "when the node was found"));
    rules.tries = 1;
    EXPECT_THAT(commands("/dev/sdc"),
                ElementsAre("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc",
                            "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=NODE"));
    EXPECT_EQ(whens("/dev/sdc").front(), "first; once");
    EXPECT_EQ(whens("/dev/sdc", true)[3], "once");
}

TEST_F(DryRun, WithoutTheToolsItSaysSo)
{
    tools.installed = false;
    for (const Row& row : rows("/dev/sdc"))
        EXPECT_THAT(row["when"].get<std::string>(), testing::StartsWith("if the tools were "));
}

TEST_F(DryRun, ForOtherPathsNothingIsRun)
{
    const std::pair<const char*, Row> paths[] = {{"/dev/mapper/mpatha", "device-mapper"},
                                                 {"/dev/emcpowera", "powerpath"},
                                                 {"/dev/vda", nullptr}};
    for (const auto& [path, owner] : paths) {
        const std::vector<Row> only = rows(path);
        ASSERT_EQ(only.size(), 1U);
        EXPECT_EQ(only[0]["owner"], owner);
        EXPECT_EQ(only[0]["command"], nullptr);
        EXPECT_EQ(only[0]["when"], "never: only a native path is looked up");
    }
    EXPECT_TRUE(tools.events.empty());
}

} // namespace
