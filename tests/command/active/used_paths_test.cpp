#include "active/used_paths.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

constexpr char oneActive[] = "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0";

/// A map over two disks, with a partition; a disk of one path.
class UsedPaths : public testing::Test {
protected:
    UsedPaths()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addDisk("sdb", "8:16", "3:0:0:0");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        m_made.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
        m_made.addMap("dm-2", "254:2", "root", "LVM-x", {"dm-1"});
        m_made.addDisk("sdc", "8:32", "4:0:0:0");
    }

    std::optional<Texts> of(const std::string& path, const MapStatus& status)
    {
        return usedPaths(m_machine, "/dev/" + path, [&](const BlockDevice& map) {
            EXPECT_EQ(map.kernelName(), "dm-0");
            return status;
        });
    }

    std::optional<Texts> of(const std::string& path, const std::string& parameters = oneActive)
    {
        return of(path, {{}, "multipath", parameters});
    }

    /// A path of nvme0n1, behind a controller that is live.
    void addNvmePath(const std::string& number, const std::string& anaState)
    {
        const std::filesystem::path folder = m_made.sysfs("class/nvme/nvme" + number);
        create_directories(folder);
        std::ofstream(folder / "state") << "live\n";
        const std::filesystem::path subsystem = m_made.sysfs("class/nvme-subsystem/nvme-subsys0");
        create_directories(subsystem);
        create_directory_symlink(folder, subsystem / ("nvme" + number));
        m_made.add("pci0000:00/nvme/nvme" + number, "nvme0c" + number + "n1", "259:1" + number);
        m_made.set("nvme0c" + number + "n1", "ana_state", anaState);
    }

    MadeUpMachine m_made;
    Machine m_machine{m_made.roots()};
};

TEST_F(UsedPaths, OfAMapAreThoseOfItsActiveGroup)
{
    EXPECT_THAT(of("mapper/mpatha"), Optional(ElementsAre("/dev/sda")));
    EXPECT_THAT(of("mapper/mpatha", "2 0 1 0 2 2 E 0 1 0 8:0 F 1 A 0 1 0 8:16 A 0"),
                Optional(ElementsAre("/dev/sdb")));
    EXPECT_THAT(of("mapper/mpatha", "2 0 1 0 1 1 A 0 2 0 8:0 A 0 8:16 A 0"),
                Optional(ElementsAre("/dev/sda", "/dev/sdb")));
}

TEST_F(UsedPaths, OfAMapWithoutAWorkingPathAreNone)
{
    EXPECT_THAT(of("mapper/mpatha", "2 0 1 0 2 1 E 0 1 0 8:0 F 1 E 0 1 0 8:16 F 1"),
                Optional(IsEmpty()));
}

TEST_F(UsedPaths, AreThoseOfTheDiskForItsPartitionsAndItsPaths)
{
    for (const char* path : {"mapper/mpathap1", "sda", "sdb"})
        EXPECT_THAT(of(path), Optional(ElementsAre("/dev/sda"))) << path;
}

TEST_F(UsedPaths, AreNotKnownToUsersWhoMayNotAsk)
{
    const MapStatus denied{std::make_error_code(std::errc::permission_denied), "", ""};
    EXPECT_EQ(of("mapper/mpatha", denied), std::nullopt);
}

TEST_F(UsedPaths, AreNotToldOfDisksThatTheKernelDoesNotMultipath)
{
    for (const char* path : {"sdc", "mapper/root", "sdz", "mapper/none"})
        EXPECT_EQ(of(path), std::nullopt) << path;
}

TEST_F(UsedPaths, OfAnNvmeDiskNeedNoPrivileges)
{
    m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
    m_made.addPartition("nvme0n1", "nvme0n1p1", "259:2");
    addNvmePath("0", "non-optimized");
    addNvmePath("1", "optimized");
    for (const char* path : {"nvme0n1", "nvme0n1p1"})
        EXPECT_THAT(of(path), Optional(ElementsAre("nvme0c1n1"))) << path;
}

} // namespace
