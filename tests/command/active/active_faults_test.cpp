#include "active_command.h"

#include <chrono>
#include <set>

namespace {

using testing::ElementsAre;

constexpr char active[] = "/dev/sdb"; // of /dev/sdc, in every scenario that ends well
constexpr char unchanged[] = "/dev/sdc";

constexpr char confirmed[] = "confirmed";
constexpr char notFound[] = "not-found";
constexpr char namesTheOther[] = "the volume manager names /dev/sdb for node arr0_17";
constexpr char namesItself[] = "the volume manager names /dev/sdc for node arr0_17";

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
    const char* result;
    std::string reason; // a part of it
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
    EXPECT_EQ(path["result"], GetParam().result);
    EXPECT_THAT(path["reason"].get<std::string>(), testing::HasSubstr(GetParam().reason));
    EXPECT_EQ(path["disk"], "/dev/sdc");
    EXPECT_EQ(outline(path["timeline"]), GetParam().steps);
    const auto waits = std::count(GetParam().steps.begin(), GetParam().steps.end(), "wait");
    EXPECT_EQ(sleeps(), Steps(static_cast<std::size_t>(waits), "5"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
}

// Failures repeat the library's answers to the same tables: a node without a name, or under half of
// its name, has no paths.
const Steps nodeWithoutPaths{"getdmpnode 0", "getsubpaths 1"};

const Case cases[] = {
    {"healthy", active, confirmed, namesTheOther, found},
    {"failed-over", unchanged, confirmed, namesItself, found},
    {"any-order", "/dev/sde", confirmed, "names /dev/sde for", found},
    {"no-active-path", unchanged, confirmed, namesItself, found},
    {"no-path-left", unchanged, "no-path", "no path of node arr0_17 can be used", found},
    {"only-primary-left", unchanged, "no-path",
     "no path of node arr0_17 is enabled; /dev/sdc is the first primary one", found},
    {"unknown-disk", active, confirmed, namesTheOther, found},
    {"failing-tool", unchanged, "tool-failed",
     "kodmpadm getdmpnode ended with status 3, 'ERROR the volume manager is not running' "
     "(4 attempts)",
     fourFailures("3", "6")},
    {"stale-repaired-by-waiting",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0",
      "getsubpaths 0"}},
    {"stale-repaired-by-refreshing", unchanged, notFound,
     "the volume manager does not know node arr0_9, which it named for sdc: kodmpadm getsubpaths "
     "ended with status 1, '",
     nodeWithoutPaths},
    {"stale-paths", active, confirmed, namesTheOther, found},
    {"replay",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-blank-lines", active, confirmed, namesTheOther, found},
    {"fault-crlf", active, confirmed, namesTheOther, found},
    {"fault-cut-short", unchanged, notFound, "the volume manager does not know node arr0_1, which",
     nodeWithoutPaths},
    {"fault-delay", active, confirmed, namesTheOther, found},
    {"fault-exit-status",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 3", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-flood",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1101", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-late-signal", unchanged, "tool-failed",
     "kodmpadm getdmpnode was ended by signal 9 (4 attempts)", fourFailures("1009")},
    {"fault-many-spaces", active, confirmed, namesTheOther, found},
    {"fault-no-header", unchanged, "no-table", "no header in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths},
    {"fault-no-rule", unchanged, notFound,
     "the volume manager does not know sdc: no node in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths},
    {"fault-noise", active, confirmed, namesTheOther, found},
    {"fault-note", unchanged, "no-table",
     "a line before the header in the answer of kodmpadm getdmpnode (4 attempts)",
     fourFailures("0")},
    {"fault-signal", active, confirmed, namesTheOther, found},
    {"fault-tabs", active, confirmed, namesTheOther, found},
};

INSTANTIATE_TEST_SUITE_P(Scenarios, ActiveFaults, testing::ValuesIn(cases),
                         [](const testing::TestParamInfo<Case>& test) {
                             std::string name = test.param.scenario;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ActiveScenarios, AreAllWalkedThrough)
{
    // The tests of interrupts and of the time limit cover the scenarios whose tools hang.
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
    const Json path = answer({"/dev/sdz"});
    EXPECT_EQ(path["active"], "/dev/sdz");
    EXPECT_EQ(path["changed"], false);
    EXPECT_EQ(path["result"], "not-found");
    EXPECT_EQ(outline(path["timeline"]).size(), 12U);
}

TEST_F(ActiveRepair, ADiskWithAnEmptyTableIsNotFound)
{
    useScenario("unknown-disk");
    const Json path = answer({"/dev/sdz"});
    EXPECT_EQ(path["active"], "/dev/sdz");
    EXPECT_EQ(path["result"], "not-found");
    EXPECT_EQ(path["reason"], "the volume manager does not know sdz: no node in the answer of "
                              "kodmpadm getdmpnode");
}

TEST_F(ActiveRepair, ToolsOfPathsThatFailAreTold)
{
    useFault({{"subcommand", "getsubpaths"}, {"exit", 4}, {"stderr", "ERROR no daemon"}});
    EXPECT_EQ(answer({"/dev/sdc"})["reason"],
              "kodmpadm getsubpaths ended with status 4, 'ERROR no daemon'");
    useFault({{"subcommand", "getsubpaths"}, {"no_header", true}});
    EXPECT_EQ(answer({"/dev/sdc"})["result"], "no-table");
    useFault({{"subcommand", "getsubpaths"},
              {"flood_mib", 2},
              {"separator", std::string(1 << 20, ' ')}});
    EXPECT_EQ(answer({"/dev/sdc"})["reason"], "kodmpadm getsubpaths printed too much");
}

TEST_F(ActiveRepair, APartitionIsLookedUpThroughItsDisk)
{
    const Json path = answer({"/dev/sdc1"});
    EXPECT_EQ(path["active"], "/dev/sdb1");
    EXPECT_EQ(path["disk"], "/dev/sdc");
    EXPECT_EQ(path["changed"], true);
    EXPECT_EQ(path["result"], "confirmed");
    EXPECT_THAT(calls(), ElementsAre(R"(kodmpadm "getdmpnode" "nodename=sdc")",
                                     R"(kodmpadm "getsubpaths" "dmpnodename=arr0_17")"));
}

TEST_F(ActiveRepair, APartitionOfAnUnknownDiskStaysAsItIs)
{
    const Json path = answer({"--once", "/dev/sdz1"});
    EXPECT_EQ(path["active"], "/dev/sdz1");
    EXPECT_EQ(path["disk"], "/dev/sdz");
    EXPECT_EQ(path["result"], "not-found");
}

TEST_F(ActiveRepair, AsGivenAsksAboutThePartitionsOwnName)
{
    const Json path = answer({"--as-given", "--once", "/dev/sdc1"});
    EXPECT_EQ(path["active"], "/dev/sdc1");
    EXPECT_EQ(path["result"], "not-found");
    EXPECT_THAT(calls(), ElementsAre(R"(kodmpadm "getdmpnode" "nodename=sdc1")"));
}

TEST_F(ActiveRepair, SoManyAttemptsAreMadeAsAreWanted)
{
    useScenario("stale-repaired-by-waiting"); // the third attempt finds the node
    const Json path = answer({"--tries", "2", "/dev/sdc"});
    EXPECT_EQ(path["active"], "/dev/sdc");
    EXPECT_EQ(path["result"], "not-found");
    EXPECT_THAT(path["reason"].get<std::string>(), testing::EndsWith(" (2 attempts)"));
    EXPECT_THAT(outline(path["timeline"]),
                ElementsAre("getdmpnode 1", "wait", "scandisks 0", "getdmpnode 1"));
    EXPECT_THAT(sleeps(), ElementsAre("5"));
    useScenario("stale-repaired-by-waiting");
    EXPECT_EQ(answer({"--tries", "3", "/dev/sdc"})["result"], "confirmed");
}

TEST_F(ActiveRepair, OnceIsOneAttemptWithoutAPause)
{
    for (const char* option : {"--once", "--tries=1"}) {
        useScenario("failing-tool");
        EXPECT_THAT(outline(answer({option, "/dev/sdc"})["timeline"]), ElementsAre("getdmpnode 3"));
        EXPECT_THAT(outline(answer({option, "--refresh", "/dev/sdc"})["timeline"]),
                    ElementsAre("getdmpnode 3", "scandisks 6", "getdmpnode 3"));
    }
    EXPECT_THAT(sleeps(), testing::IsEmpty());
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
    EXPECT_EQ(path["result"], "tool-failed");
    EXPECT_EQ(path["reason"], "kodmpadm getdmpnode could not be run (4 attempts)");
    EXPECT_EQ(path["timeline"].size(), 12U);
}

} // namespace
