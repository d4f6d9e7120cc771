#include "simulated_tools.h"

namespace {

using VolumeManager = SimulatedTools;

TEST_F(VolumeManager, ANodeThatWaitsForTwoRescansIsFoundAfterTwo)
{
    useStale({{"rescans", 2}});
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    EXPECT_THAT(pathsOf("arr0_17"), Fails(1, "node \"arr0_17\""));
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, ARescanOfNamedDisksDiscoversTheirNode)
{
    for (const char* devices : {"sdc", "sdb", "sdb,sdc", "sdz,sdc", ",sdc", "sdc,", ",,sdc,,"}) {
        useStale({{"rescans", 1}});
        EXPECT_THAT(kodisk({"scandisks", std::string("device=") + devices}), Succeeds());
        EXPECT_THAT(nodeOf("sdb"), Succeeds(healthyNode)) << devices;
    }
}

TEST_F(VolumeManager, ARescanOfOtherDisksDoesNot)
{
    useStale({{"rescans", 1}});
    for (const char* devices : {"sdz", "sd", "arr0_17", "", ",", "sdbsdc"})
        EXPECT_THAT(kodisk({"scandisks", std::string("device=") + devices}), Succeeds());
    EXPECT_THAT(nodeOf("sdb"), Fails(1, "disk \"sdb\""));
}

TEST_F(VolumeManager, ARescanThatNamesADiskTwiceIsOneRescan)
{
    useStale({{"rescans", 2}});
    kodisk({"scandisks", "device=sdc,sdb,sdc"});
    EXPECT_THAT(nodeOf("sdb"), Fails(1, "disk \"sdb\""));
}

TEST_F(VolumeManager, ARemovedNodeIsForgottenUntilARescan)
{
    useScenario("healthy");
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    EXPECT_THAT(pathsOf("arr0_17"), Fails(1, "node \"arr0_17\""));
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Fails(1, "node \"arr0_17\""));
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, OneNodesRemovalAndRescanLeaveTheOthersAlone)
{
    Json state = scenario("healthy");
    Json other = state["arrays"][0];
    other["name"] = "arr1";
    other["nodes"][0] = {{"name", "arr1_3"},
                         {"paths", {{{"name", "sdx"}, {"state", "ENABLED"}, {"type", "PRIMARY"}}}}};
    state["arrays"].push_back(other);
    write(state);
    kodisk({"rm", "arr0_17"});
    kodisk({"rm", "arr1_3"});
    kodisk({"scandisks", "device=sdx"});
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    EXPECT_EQ(nodeOf("sdx").status, 0);
}

TEST_F(VolumeManager, AnUnknownNodeCannotBeRemoved)
{
    useScenario("healthy");
    EXPECT_THAT(kodisk({"rm", "arr0_1"}), Fails(1, "node \"arr0_1\""));
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, ANodeThatWaitsForItsRemovalIsNotHelpedByRescans)
{
    useStale({{"removal", true}});
    kodisk({"scandisks"});
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, ANodeThatWaitsForItsRemovalIsRemovedByItsOwnNameToo)
{
    useStale({{"removal", true}, {"name", "arr0_9"}});
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Succeeds());
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, ANodeThatWaitsForItsRemovalIsNotRemovedByAnotherName)
{
    useStale({{"removal", true}});
    EXPECT_THAT(kodisk({"rm", "arr0_1"}), Fails(1, "node \"arr0_1\""));
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
}

TEST_F(VolumeManager, ANodeThatOnlyWaitsForRescansCannotBeRemoved)
{
    useStale({{"rescans", 1}});
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Fails(1, "node \"arr0_17\""));
}

TEST_F(VolumeManager, AfterItsRemovalANodeCanNeedSeveralRescans)
{
    useStale({{"removal", true}, {"rescans", 2}});
    kodisk({"rm", "arr0_17"});
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, AStaleNodeCanGoByAnotherName)
{
    useScenario("stale-repaired-by-refreshing");
    EXPECT_THAT(nodeOf("sdc"), Succeeds("NAME      STATE      GROUP    PATHS\n"
                                        "===================================\n"
                                        "arr0_9    ENABLED    arr0     2\n"));
    EXPECT_THAT(pathsOf("arr0_9"), Fails(1, "node \"arr0_9\""));
    EXPECT_THAT(pathsOf("arr0_17"), Fails(1, "node \"arr0_17\""));
    EXPECT_THAT(kodisk({"rm", "arr0_9"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    kodisk({"scandisks"});
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(VolumeManager, AStaleNodeCanShowOtherPaths)
{
    useScenario("stale-paths");
    EXPECT_THAT(pathsOf("arr0_17").output, testing::HasSubstr("sdb     ENABLED(A)"));
    kodisk({"rm", "arr0_17"});
    kodisk({"scandisks"});
    EXPECT_THAT(pathsOf("arr0_17").output, testing::HasSubstr("sdc     ENABLED(A)"));
}

TEST_F(VolumeManager, LookingChangesNothingButTheCounts)
{
    useScenario("stale-paths");
    nodeOf("sdc");
    pathsOf("arr0_17");
    Json expected = scenario("stale-paths");
    expected["arrays"][0]["nodes"][0]["stale"] = state()["arrays"][0]["nodes"][0]["stale"];
    expected["calls"] = {{"getdmpnode", 1}, {"getsubpaths", 1}};
    EXPECT_EQ(state(), expected);
}

} // namespace
