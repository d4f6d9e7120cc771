#include "multipath/map_paths.h"

#include <gmock/gmock.h>

#include "tests/command/multipath/shown_paths.h"
#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// The map mpatha over sda and sdb.
class MapPaths : public testing::Test {
protected:
    MapPaths()
    {
        m_machine.addDisk("sda", "8:0", "2:0:0:0");
        m_machine.addDisk("sdb", "8:16", "3:0:0:0");
        m_machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
    }

    DiskPaths paths(const MapStatus& status) const
    {
        const Inventory inventory(m_machine.roots());
        return mapPaths(inventory, *inventory.named("dm-0"),
                        [&](const BlockDevice&) { return status; });
    }

    DiskPaths pathsWith(const std::string& parameters) const
    {
        return paths({{}, "multipath", parameters});
    }

    std::string shownWith(const std::string& parameters) const
    {
        return shown(pathsWith(parameters));
    }

    MadeUpMachine m_machine;
};

TEST_F(MapPaths, ThatWorkInTheActiveGroupAreUsed)
{
    const DiskPaths disk = pathsWith("2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 2");
    EXPECT_EQ(shown(disk), "/dev/sda 1 active yes\n"
                           "/dev/sdb 2 standby no\n");
    EXPECT_EQ(disk.driver, PathDriver::deviceMapper);
    EXPECT_EQ(disk.name, "/dev/mapper/mpatha");
    EXPECT_FALSE(disk.error);
    EXPECT_EQ(disk.hasUsedPath(), true);
    EXPECT_FALSE(disk.hasLostPath());
    EXPECT_EQ(disk.paths[1].failures, 2U);
}

TEST_F(MapPaths, OfOneGroupAreUsedTogether)
{
    EXPECT_EQ(shownWith("2 0 1 0 1 1 A 0 2 0 8:0 A 0 8:16 A 0"), "/dev/sda 1 active yes\n"
                                                                 "/dev/sdb 1 active yes\n");
}

TEST_F(MapPaths, ThatHaveFailedInTheActiveGroupAreNotUsed)
{
    EXPECT_EQ(shownWith("2 0 1 0 1 1 A 0 2 0 8:0 A 0 8:16 F 1"), "/dev/sda 1 active yes\n"
                                                                 "/dev/sdb 1 failed no\n");
}

TEST_F(MapPaths, AreUsedInTheGroupThatTheKernelTriesNext)
{
    // Before any request, no group is active.
    EXPECT_EQ(shownWith("2 0 1 0 2 1 E 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"), "/dev/sda 1 active yes\n"
                                                                         "/dev/sdb 2 standby no\n");
    // The daemon has had the group switched, and no request has come.
    EXPECT_EQ(shownWith("2 0 1 0 2 2 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"), "/dev/sda 1 standby no\n"
                                                                         "/dev/sdb 2 active yes\n");
}

TEST_F(MapPaths, AreUsedInTheActiveGroupBeforeAnEarlierOneThatIsEnabled)
{
    // No path of the group that is next works.
    EXPECT_EQ(shownWith("2 0 1 0 3 3 E 0 1 0 8:0 A 0 A 0 1 0 8:16 A 0 E 0 0 0"),
              "/dev/sda 1 standby no\n"
              "/dev/sdb 2 active yes\n");
}

TEST_F(MapPaths, AreUsedInAnotherGroupWhenTheNextOneHasFailed)
{
    const DiskPaths disk = pathsWith("2 0 1 0 2 1 A 0 1 0 8:0 F 1 E 0 1 0 8:16 A 0");
    EXPECT_EQ(shown(disk), "/dev/sda 1 failed no\n"
                           "/dev/sdb 2 active yes\n");
    EXPECT_TRUE(disk.hasLostPath());
    EXPECT_EQ(disk.hasUsedPath(), true);
}

TEST_F(MapPaths, OfADisabledGroupAreUsedLast)
{
    EXPECT_EQ(shownWith("2 0 1 0 2 1 D 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"), "/dev/sda 1 standby no\n"
                                                                         "/dev/sdb 2 active yes\n");
    EXPECT_EQ(shownWith("2 0 1 0 2 1 D 0 1 0 8:0 A 0 E 0 1 0 8:16 F 1"), "/dev/sda 1 active yes\n"
                                                                         "/dev/sdb 2 failed no\n");
}

TEST_F(MapPaths, MayAllHaveFailed)
{
    const DiskPaths disk = pathsWith("2 0 1 0 2 1 E 0 1 0 8:0 F 1 E 0 1 0 8:16 F 1");
    EXPECT_EQ(shown(disk), "/dev/sda 1 failed no\n"
                           "/dev/sdb 2 failed no\n");
    EXPECT_EQ(disk.hasUsedPath(), false);
}

TEST_F(MapPaths, ThatTheKernelHasTakenOffAreNotUsed)
{
    for (const char* state : {"offline", "transport-offline", "deleted"}) {
        m_machine.set("sda", "device/state", state);
        EXPECT_EQ(shownWith("2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"),
                  "/dev/sda 1 offline no\n"
                  "/dev/sdb 2 active yes\n")
            << state;
    }
}

TEST_F(MapPaths, AreUnknownToUsersWhoMayNotAskTheDeviceMapper)
{
    m_machine.set("sdb", "device/state", "offline");
    const DiskPaths disk = paths({std::make_error_code(std::errc::permission_denied), {}, {}});
    EXPECT_EQ(shown(disk), "/dev/sda - unknown ?\n"
                           "/dev/sdb - offline no\n");
    EXPECT_EQ(disk.error, std::errc::permission_denied);
    EXPECT_EQ(disk.hasUsedPath(), std::nullopt);
    EXPECT_TRUE(disk.hasLostPath());
}

TEST_F(MapPaths, AreUnknownWhenTheAnswerIsNoStatusOfAMultipathTarget)
{
    for (const MapStatus& status :
         {MapStatus{{}, "multipath", "2 0 1"}, MapStatus{{}, "error", ""}, MapStatus{}}) {
        const DiskPaths disk = paths(status);
        EXPECT_EQ(shown(disk), "/dev/sda - unknown ?\n/dev/sdb - unknown ?\n");
        EXPECT_EQ(disk.error, std::errc::bad_message);
    }
}

TEST_F(MapPaths, ThatHaveVanishedAreShownByTheirNumbers)
{
    const DiskPaths disk = pathsWith("2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:32 F 1");
    EXPECT_EQ(shown(disk), "/dev/sda 1 active yes\n8:32 2 failed no\n");
    EXPECT_EQ(disk.paths[1].device, nullptr);
}

TEST_F(MapPaths, MayLeadThroughNvmeControllers)
{
    m_machine.add("pci0000:00/nvme/nvme7", "nvme7n1", "259:0");
    m_machine.addMember("dm-0", "nvme7n1");
    const DiskPaths disk = pathsWith("2 0 1 0 1 1 A 0 1 0 259:0 A 0");
    EXPECT_EQ(shown(disk), "/dev/nvme7n1 1 active yes\n");
    EXPECT_EQ(disk.paths.front().controller.value().name, "nvme7");
}

} // namespace
