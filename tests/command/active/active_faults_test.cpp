#include "active_command.h"

#include <chrono>
#include <set>

namespace {

using testing::ElementsAre;

constexpr char active[] = "/dev/sdb"; // of /dev/sdc, in every scenario that ends well
constexpr char unchanged[] = "/dev/sdc";

using Steps = std::vector<std::string>;

const Steps found{"getdmpnode 0", "getsubpaths 0"};

/// The steps of four failed attempts; `result` is that of each lookup.
Steps fourFailures(const std::string& result, const std::string& rescan = "0")
{
    Steps steps;
    for (int attempt = 0; attempt < 4; ++attempt)
        steps.insert(steps.end(), {"getdmpnode " + result, "wait", "scandisks " + rescan});
    return steps;
}

struct Case {
    const char* scenario;
    const char* active;
    Steps steps;
};

class ActiveFaults : public ActiveCommand, public testing::WithParamInterface<Case> {};

TEST_P(ActiveFaults, GiveTheBestPathOrThePathItself)
{
    useScenario(GetParam().scenario);
    const Json path = answer({"/dev/sdc"});
    EXPECT_EQ(path["name"], "/dev/sdc");
    EXPECT_EQ(path["owner"], "native");
    EXPECT_EQ(path["active"], GetParam().active);
    EXPECT_EQ(path["changed"], GetParam().active != std::string("/dev/sdc"));
    EXPECT_EQ(outline(path["timeline"]), GetParam().steps);
    const auto waits = std::count(GetParam().steps.begin(), GetParam().steps.end(), "wait");
    EXPECT_EQ(sleeps(), Steps(static_cast<std::size_t>(waits), "5"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
}

// Failures repeat the library's answers to the same tables: a node without a name, or under half of
// its name, has no paths.
const Steps nodeWithoutPaths{"getdmpnode 0", "getsubpaths 1"};

const Case cases[] = {
    {"healthy", active, found},
    {"failed-over", unchanged, found},
    {"any-order", "/dev/sde", found},
    {"no-active-path", unchanged, found},
    {"no-path-left", unchanged, found},
    {"only-primary-left", unchanged, found},
    {"unknown-disk", active, found},
    {"failing-tool", unchanged, fourFailures("3", "6")},
    {"stale-repaired-by-waiting",
     active,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0",
      "getsubpaths 0"}},
    {"stale-repaired-by-refreshing", unchanged, nodeWithoutPaths},
    {"stale-paths", active, found},
    {"replay", active, {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-blank-lines", active, found},
    {"fault-crlf", active, found},
    {"fault-cut-short", unchanged, nodeWithoutPaths},
    {"fault-delay", active, found},
    {"fault-exit-status",
     active,
     {"getdmpnode 3", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-flood",
     active,
     {"getdmpnode 1101", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-late-signal", unchanged, fourFailures("1009")},
    {"fault-many-spaces", active, found},
    {"fault-no-header", unchanged, nodeWithoutPaths},
    {"fault-no-rule", unchanged, nodeWithoutPaths},
    {"fault-noise", active, found},
    {"fault-note", unchanged, fourFailures("0")},
    {"fault-signal", active, found},
    {"fault-tabs", active, found},
};

INSTANTIATE_TEST_SUITE_P(Scenarios, ActiveFaults, testing::ValuesIn(cases),
                         [](const testing::TestParamInfo<Case>& test) {
                             std::string name = test.param.scenario;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ActiveScenarios, AreAllWalkedThrough)
{
    // The tests of interrupts cover the scenarios whose tools hang.
    std::set<std::string> walked{"hanging-tool", "fault-hang-after-output"};
    for (const Case& walk : cases)
        walked.insert(walk.scenario);
    std::set<std::string> scenarios;
    for (const auto& file : std::filesystem::directory_iterator(SIMULATOR_SCENARIOS))
        scenarios.insert(file.path().stem());
    EXPECT_EQ(walked, scenarios);
}

class ActiveRepair : public ActiveCommand {};

TEST_F(ActiveRepair, RefreshingRemovesTheNodeAndScansEveryDisk)
{
    useScenario("stale-repaired-by-refreshing");
    EXPECT_EQ(answer({"--refresh", "/dev/sdc"})["active"], "/dev/sdb");
    EXPECT_THAT(calls(),
                ElementsAre(R"(kodmpadm "getdmpnode" "nodename=sdc")", R"(kodisk "rm" "arr0_9")",
                            R"(kodisk "scandisks")", R"(kodmpadm "getdmpnode" "nodename=sdc")",
                            R"(kodmpadm "getsubpaths" "dmpnodename=arr0_17")"));
}

TEST_F(ActiveRepair, RefreshingMendsPathsOfBeforeAFailover)
{
    useScenario("stale-paths");
    EXPECT_EQ(answer({"/dev/sdb"})["active"], "/dev/sdb");
    std::filesystem::remove(logPath());
    const Json path = answer({"--refresh", "/dev/sdb"});
    EXPECT_EQ(path["active"], "/dev/sdc");
    EXPECT_EQ(path["changed"], true);
    EXPECT_THAT(outline(path["timeline"]), ElementsAre("getdmpnode 0", "rm 0", "scandisks 0",
                                                       "getdmpnode 0", "getsubpaths 0"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
    EXPECT_THAT(sleeps(), testing::IsEmpty());
}

TEST_F(ActiveRepair, ARecordedSessionIsRefreshedToo)
{
    useScenario("replay");
    const Json path = answer({"--refresh", "/dev/sdc"});
    EXPECT_EQ(path["active"], "/dev/sdb");
    EXPECT_THAT(outline(path["timeline"]),
                ElementsAre("getdmpnode 1", "scandisks 0", "getdmpnode 0", "getsubpaths 0"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
}

TEST_F(ActiveRepair, ACommandThatWasNotRecordedFails)
{
    useScenario("replay");
    EXPECT_EQ(outline(answer({"/dev/sdb"})["timeline"]), fourFailures("70", "70"));
}

TEST_F(ActiveRepair, RefreshingPausesTenSecondsAfterEachFailure)
{
    useFault({{"subcommand", "getdmpnode"}, {"exit", 3}});
    EXPECT_THAT(outline(answer({"--refresh", "/dev/sdc"})["timeline"]),
                ElementsAre("getdmpnode 3", "scandisks 0", "getdmpnode 3", "wait", "scandisks 0",
                            "getdmpnode 3", "wait", "scandisks 0", "getdmpnode 3", "wait",
                            "scandisks 0", "getdmpnode 3", "wait"));
    EXPECT_THAT(sleeps(), ElementsAre("10", "10", "10", "10"));
}

TEST_F(ActiveRepair, EverySecondLookupDiesAndTheNextOneServes)
{
    useScenario("fault-signal");
    EXPECT_THAT(outline(answer({"/dev/sdc"})["timeline"]),
                ElementsAre("getdmpnode 0", "getsubpaths 0"));
    EXPECT_THAT(
        outline(answer({"/dev/sdc"})["timeline"]),
        ElementsAre("getdmpnode 1011", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"));
}

TEST_F(ActiveRepair, ADiskThatNobodyKnowsStaysAsItIs)
{
    const Json path = answer({"/dev/sdz9"});
    EXPECT_EQ(path["active"], "/dev/sdz9");
    EXPECT_EQ(path["changed"], false);
    EXPECT_EQ(outline(path["timeline"]).size(), 12U);
}

TEST_F(ActiveRepair, TheTimelineTellsHowLongCommandsAndWaitsTook)
{
    useFault({{"subcommand", "getdmpnode"}, {"call", 1}, {"exit", 3}, {"delay_ms", 150}});
    const auto begin = std::chrono::steady_clock::now();
    const Result ended = Process(active({"-J", "/dev/sdc"}, "300")).finish();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    const Json path = Json::parse(ended.output)["paths"][0];
    EXPECT_GE(path["timeline"][0]["seconds"], 0.15);
    EXPECT_GE(path["timeline"][1]["wait"], 0.3);
    double sum = 0;
    for (const Json& step : path["timeline"])
        sum += step.contains("wait") ? step["wait"].get<double>() : step["seconds"].get<double>();
    EXPECT_GE(path["took"].get<double>() + 0.01, sum);
    EXPECT_LE(path["timeline"][1]["wait"].get<double>(), path["took"].get<double>());
    EXPECT_LE(path["took"].get<double>(), passed.count());
}

TEST_F(ActiveRepair, AToolThatCannotBeRunHasNoResult)
{
    std::filesystem::create_directory(folder() / "tools");
    std::ofstream(folder() / "tools/kodmpadm") << "#!/nowhere/interpreter\n";
    std::ofstream(folder() / "tools/kodisk") << "#!/nowhere/interpreter\n";
    for (const char* tool : {"kodmpadm", "kodisk"})
        permissions(folder() / "tools" / tool, std::filesystem::perms::owner_all);
    std::vector<std::string> command = active({"-J", "/dev/sdc"});
    command[2] = folder() / "tools";
    const Json path = Json::parse(Process(command).finish().output)["paths"][0];
    EXPECT_EQ(path["active"], "/dev/sdc");
    EXPECT_EQ(path["timeline"][0]["result"], nullptr);
    EXPECT_EQ(path["timeline"].size(), 12U);
}

} // namespace
