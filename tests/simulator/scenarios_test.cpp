#include <csignal>
#include <sstream>

#include "simulated_tools.h"

namespace {

using Scenarios = SimulatedTools;

std::vector<std::vector<std::string>> rowsOf(const std::string& output)
{
    std::vector<std::vector<std::string>> rows;
    const std::vector<std::string> lines = splitLines(output);
    for (std::size_t i = 2; i < lines.size(); ++i) {
        std::istringstream words(lines[i]);
        rows.push_back({std::istream_iterator<std::string>(words), {}});
    }
    return rows;
}

using Rows = std::vector<std::vector<std::string>>;

TEST_F(Scenarios, EachOneIsReadable)
{
    for (const auto& file : std::filesystem::directory_iterator(scenarios())) {
        useScenario(file.path().stem());
        EXPECT_THAT(kodisk({"other"}).errors, testing::Not(testing::HasSubstr("simulator:")))
            << file;
        EXPECT_TRUE(state()["about"].is_string()) << file;
    }
}

TEST_F(Scenarios, PathsStandAsTheirTitlesSay)
{
    const std::pair<const char*, Rows> expected[] = {
        {"healthy",
         {{"sdb", "ENABLED(A)", "PRIMARY", "c1"}, {"sdc", "ENABLED", "SECONDARY", "c2"}}},
        {"failed-over",
         {{"sdb", "DISABLED", "PRIMARY", "c1"}, {"sdc", "ENABLED(A)", "SECONDARY", "c2"}}},
        {"no-active-path",
         {{"sdb", "DISABLED", "PRIMARY", "c1"},
          {"sdc", "ENABLED", "SECONDARY", "c2"},
          {"sdd", "ENABLED", "PRIMARY", "c1"}}},
        {"any-order",
         {{"sdd", "ENABLED", "SECONDARY", "c2"},
          {"sdb", "DISABLED", "PRIMARY", "c1"},
          {"sdc", "ENABLED", "PRIMARY", "c1"},
          {"sde", "ENABLED(A)", "SECONDARY", "c2"}}},
        {"only-primary-left",
         {{"sdb", "DISABLED", "SECONDARY", "c1"}, {"sdc", "DISABLED", "PRIMARY", "c2"}}},
        {"no-path-left",
         {{"sdb", "DISABLED", "SECONDARY", "c1"}, {"sdc", "DISABLED", "SECONDARY", "c2"}}},
    };
    for (const auto& [name, rows] : expected) {
        useScenario(name);
        EXPECT_EQ(rowsOf(pathsOf("arr0_17").output), rows) << name;
    }
}

TEST_F(Scenarios, AStaleNodeIsRepairedByWaiting)
{
    useScenario("stale-repaired-by-waiting");
    std::vector<int> statuses;
    for (int attempt = 0; attempt < 3; ++attempt) {
        statuses.push_back(nodeOf("sdc").status);
        kodisk({"scandisks", "device=sdc"});
    }
    EXPECT_EQ(statuses, (std::vector<int>{1, 1, 0}));
}

TEST_F(Scenarios, AStaleNodeIsRepairedByRefreshingOnly)
{
    useScenario("stale-repaired-by-refreshing");
    kodisk({"scandisks"});
    const std::string node = rowsOf(nodeOf("sdc").output)[0][0];
    EXPECT_EQ(pathsOf(node).status, 1);
    kodisk({"rm", node});
    kodisk({"scandisks"});
    EXPECT_EQ(pathsOf(rowsOf(nodeOf("sdc").output)[0][0]).status, 0);
}

TEST_F(Scenarios, ARecordedSessionCanBePlayedAgain)
{
    useScenario("replay");
    EXPECT_EQ(nodeOf("sdc").status, 1);
    EXPECT_EQ(kodisk({"scandisks", "device=sdc"}).status, 0);
    EXPECT_EQ(rowsOf(nodeOf("sdc").output), (Rows{{"arr0_17", "ENABLED", "arr0", "2"}}));
    EXPECT_EQ(rowsOf(pathsOf("arr0_17").output)[1][1], "ENABLED(A)");
    EXPECT_EQ(kodisk({"rm", "arr0_17"}).status, 0);
    EXPECT_EQ(kodisk({"scandisks"}).status, 0);
    EXPECT_EQ(nodeOf("sdb").status, 70);
}

TEST_F(Scenarios, EachFaultShowsInTheNodesTable)
{
    const std::string whole = healthyNode;
    const std::string header = whole.substr(0, 37);
    const std::string rule = whole.substr(37, 37);
    const std::string row = whole.substr(74);
    const std::pair<const char*, std::string> expected[] = {
        {"fault-cut-short", whole.substr(0, 80)},
        {"fault-note", "NOTE: the licence expires in 10 days\n" + whole},
        {"fault-blank-lines", header + rule + "\n" + row},
        {"fault-no-header", rule + row},
        {"fault-no-rule", header + row},
        {"fault-noise", whole},
        {"fault-delay", whole},
        {"fault-crlf",
         header.substr(0, 36) + "\r\n" + rule.substr(0, 36) + "\r\n" + row.substr(0, 32) + "\r\n"},
        {"fault-tabs", "NAME\tSTATE\tGROUP\tPATHS\n" + rule + "arr0_17\tENABLED\tarr0\t2\n"},
        {"fault-exit-status", ""},
    };
    for (const auto& [name, output] : expected) {
        useScenario(name);
        EXPECT_EQ(nodeOf("sdc").output, output) << name;
    }
}

TEST_F(Scenarios, AFailingToolFailsInEverySubcommand)
{
    useScenario("failing-tool");
    EXPECT_THAT(nodeOf("sdc"), Fails(3, "ERROR the volume manager is not running"));
    EXPECT_THAT(pathsOf("arr0_17"), Fails(4, "ERROR"));
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Fails(5, "ERROR"));
    EXPECT_THAT(kodisk({"scandisks"}), Fails(6, "ERROR"));
}

TEST_F(Scenarios, EverySecondCallDies)
{
    useScenario("fault-signal");
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
    EXPECT_THAT(nodeOf("sdc"), DiesBy(SIGSEGV));
}

TEST_F(Scenarios, AHangingToolHangs)
{
    useScenario("hanging-tool");
    EXPECT_THAT(limited(tool("kodmpadm", {"getdmpnode", "nodename=sdc"})), Fails(limitPassed, ""));
}

} // namespace
