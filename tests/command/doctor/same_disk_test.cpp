#include "doctor/same_disk.h"

#include <gmock/gmock.h>

#include "doctor/redundancy.h"

namespace {

using command::eachDiskOnce;
using command::ExaminedPath;
using command::Finding;
using command::MultipathDisk;
using command::PathState;
using testing::ElementsAre;
using testing::IsEmpty;

MultipathDisk node(const std::vector<ExaminedPath>& paths)
{
    return {"arr0_17", "kodmp", paths};
}

MultipathDisk map(const std::vector<ExaminedPath>& paths)
{
    return {"/dev/mapper/mpatha", "device-mapper", paths};
}

/// The only disk that is left of both.
MultipathDisk merged(const MultipathDisk& node, const MultipathDisk& kernelDisk)
{
    const std::vector<MultipathDisk> disks = eachDiskOnce({node}, {kernelDisk});
    EXPECT_EQ(disks.size(), 1U);
    return disks.back();
}

std::vector<std::string> pathsOf(const MultipathDisk& disk)
{
    std::vector<std::string> paths;
    for (const ExaminedPath& path : disk.paths)
        paths.push_back(path.name + ' ' + command::pathStateName(path.state));
    return paths;
}

Finding findingOf(const MultipathDisk& disk)
{
    std::vector<Finding> findings;
    command::checkRedundancy(disk, 0, [&](const Finding& finding) { findings.push_back(finding); });
    return findings.front();
}

const ExaminedPath sda{"sda", PathState::active, true};
const ExaminedPath sdb{"sdb", PathState::standby};

TEST(SameDisk, DisksWithoutACommonPathAreTwo)
{
    const std::vector<MultipathDisk> disks =
        eachDiskOnce({node({{"sdc", PathState::active}})}, {map({sda, sdb}), map({})});
    ASSERT_EQ(disks.size(), 3U);
    EXPECT_EQ(disks[0].device, "arr0_17");
    EXPECT_EQ(disks[1].node, "");
    EXPECT_EQ(pathsOf(disks[1]).size(), 2U);
}

TEST(SameDisk, ANodeOfTheKernelsPathsIsThatDisk)
{
    const MultipathDisk disk = merged(node({sdb, sda}), map({sda, sdb}));
    EXPECT_EQ(disk.device, "/dev/mapper/mpatha");
    EXPECT_EQ(disk.node, "arr0_17");
    EXPECT_THAT(pathsOf(disk), ElementsAre("sda active", "sdb standby"));
    EXPECT_EQ(findingOf(disk).text, "2 paths (node arr0_17), sda carries the I/O");
}

TEST(SameDisk, WhichPathIsUsedIsTheKernelsWord)
{
    const MultipathDisk disk = merged(
        node({{"sda", PathState::standby}, {"sdb", PathState::active, true}}), map({sda, sdb}));
    EXPECT_TRUE(disk.paths[0].isUsed);
    EXPECT_FALSE(disk.paths[1].isUsed);
}

TEST(SameDisk, APathThatOnlyTheNodeHasLostIsLost)
{
    const MultipathDisk disk = merged(node({{"sda", PathState::failed}, sdb}), map({sda, sdb}));
    const Finding finding = findingOf(disk);
    EXPECT_EQ(finding.device, "/dev/mapper/mpatha");
    EXPECT_EQ(finding.text, "sda failed in node arr0_17; 1 of 2 paths is left");
    EXPECT_EQ(finding.remedy, "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17");
}

TEST(SameDisk, APathThatTheKernelHasLostIsLost)
{
    const MultipathDisk disk =
        merged(node({sda, {"sdb", PathState::failed}}), map({sda, {"sdb", PathState::offline}}));
    const Finding finding = findingOf(disk);
    EXPECT_EQ(finding.text, "sdb offline; 1 of 2 paths is left");
    EXPECT_EQ(finding.remedy, "multipath -ll /dev/mapper/mpatha");
}

TEST(SameDisk, APathThatOnlyTheNodeHasIsAPathOfTheDisk)
{
    const MultipathDisk disk = merged(node({sda, {"sdc", PathState::failed}}), map({sda}));
    EXPECT_THAT(pathsOf(disk), ElementsAre("sda active", "sdc failed"));
    EXPECT_EQ(findingOf(disk).text, "sdc failed in node arr0_17; 1 of 2 paths is left");
}

TEST(SameDisk, StatesThatTheKernelDoesNotTellAreTheNodes)
{
    MultipathDisk unknown = map({{"sda", PathState::unknown}, {"sdb", PathState::unknown}});
    unknown.error = std::make_error_code(std::errc::permission_denied);
    MultipathDisk disk = merged(node({sda}), unknown);
    EXPECT_THAT(pathsOf(disk), ElementsAre("sda active", "sdb unknown"));
    EXPECT_TRUE(disk.error);
    disk = merged(node({sda, sdb}), unknown);
    EXPECT_THAT(pathsOf(disk), ElementsAre("sda active", "sdb standby"));
    EXPECT_TRUE(disk.paths[0].isUsed);
    EXPECT_FALSE(disk.error);
}

TEST(SameDisk, TwoNodesAreNotOneDisk)
{
    const std::vector<MultipathDisk> disks =
        eachDiskOnce({node({sda}), MultipathDisk{"arr0_18", "kodmp", {sdb}}}, {map({sda, sdb})});
    ASSERT_EQ(disks.size(), 2U);
    EXPECT_EQ(disks[0].device, "arr0_18");
    EXPECT_EQ(disks[1].node, "arr0_17");
    EXPECT_THAT(eachDiskOnce({}, {}), IsEmpty());
}

} // namespace
