#include "kernel/kernel_maps.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using command::KernelMap;
using command::kernelMaps;
using testing::IsEmpty;

namespace {

void addMap(const TemporaryFolder& sysfs, const std::string& device, const std::string& name,
            const std::string& uuid)
{
    const fs::path folder = sysfs.file(device + "/dm");
    fs::create_directories(folder);
    std::ofstream(folder / "name") << name << '\n';
    std::ofstream(folder / "uuid") << uuid << '\n';
}

TEST(KernelMaps, AMultipathDiskIsKnownByItsUuid)
{
    EXPECT_TRUE((KernelMap{"mpatha", "mpath-3600"}).isMultipathDisk());
    for (const char* uuid : {"", "LVM-abc", "part1-mpath-3600", "xmpath-1", "mpath"})
        EXPECT_FALSE((KernelMap{"mpatha", uuid}).isMultipathDisk()) << uuid;
}

TEST(KernelMaps, APartitionOfOneIsKnownByItsUuid)
{
    for (const char* uuid : {"part1-mpath-3600", "part15-mpath-3600"})
        EXPECT_TRUE((KernelMap{"mpathap1", uuid}).isMultipathPartition()) << uuid;
    for (const char* uuid : {"", "mpath-3600", "part-mpath-3600", "part1", "part1-LVM-abc",
                             "xpart1-mpath-1", "part1mpath-1"})
        EXPECT_FALSE((KernelMap{"mpathap1", uuid}).isMultipathPartition()) << uuid;
}

TEST(KernelMaps, AreTheDevicesThatHaveAName)
{
    const TemporaryFolder sysfs;
    fs::create_directories(sysfs.file("sda"));
    addMap(sysfs, "dm-3", "mpatha", "mpath-3600");
    const std::vector<KernelMap> maps = kernelMaps(sysfs.file(""));
    ASSERT_EQ(maps.size(), 1U);
    EXPECT_EQ(maps[0].name, "mpatha");
    EXPECT_EQ(maps[0].uuid, "mpath-3600");
}

TEST(KernelMaps, StandInTheOrderOfTheirNames)
{
    const TemporaryFolder sysfs;
    for (const char* name : {"c", "a", "e", "b", "d"})
        addMap(sysfs, std::string("dm-") + name, name, "");
    std::string names;
    for (const KernelMap& map : kernelMaps(sysfs.file("")))
        names += map.name;
    EXPECT_EQ(names, "abcde");
}

TEST(KernelMaps, OfAMissingFolderAreNone)
{
    EXPECT_THAT(kernelMaps("/nonexistent/sys"), IsEmpty());
}

} // namespace
