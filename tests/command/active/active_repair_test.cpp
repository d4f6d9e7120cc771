// Lookups that rescan or refresh, and what they tell of it.
#include "active_command.h"

#include <chrono>
#include <fstream>

#include "tests/command/scenario_answers.h"

namespace {

using testing::ElementsAre;

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
