#include "multipath/disk_paths.h"

#include <gmock/gmock.h>

#include "tests/command/multipath/shown_paths.h"
#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// A map with a partition, an NVMe disk with a path, and disks of one path.
class Disks : public testing::Test {
protected:
    Disks()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addPartition("sda", "sda1", "8:1");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
        m_made.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
        m_made.addMap("dm-2", "254:2", "secret", "CRYPT-LUKS2-x", {"dm-1"});
        m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        m_made.add("pci0000:00/nvme/nvme10", "nvme0c10n1", "259:1");
        m_made.addPartition("nvme0n1", "nvme0n1p1", "259:2");
        m_made.addDisk("sdb", "8:16", "3:0:0:0");
        m_made.addPartition("sdb", "sdb1", "8:17");
        m_made.add("pci0000:00/virtio0/block", "vda", "253:0");
        m_made.addVirtual("loop0", "7:0");
        m_made.addVirtual("nbd0", "43:0");
        m_made.add("css0/0.0.0001/0.0.0200/block", "dasda", "94:0");
        m_made.add("pci0000:00/mmc0/mmc0:0001/block", "mmcblk0", "179:0");
        m_made.add("platform/floppy.0/block", "fd0", "2:0");
        m_made.add("pci0000:00/ata1/block", "sr0", "11:0");
        m_made.add("platform/emcp/block", "emcpowera", "120:0");
    }

    std::string diskOfNamed(const std::string& name) const
    {
        const Inventory inventory(m_made.roots());
        const BlockDevice* disk = diskOf(inventory, *inventory.named(name));
        return disk == nullptr ? "none" : disk->kernelName();
    }

    DiskPaths pathsOf(const std::string& name) const
    {
        const Inventory inventory(m_made.roots());
        return diskPaths(inventory, *inventory.named(name), [&](const BlockDevice&) {
            ++m_asked;
            return MapStatus{{}, "multipath", "2 0 1 0 1 1 A 0 1 0 8:0 A 0"};
        });
    }

    MadeUpMachine m_made;
    mutable int m_asked = 0;
};

TEST_F(Disks, AreFoundByTheirPartitionsAndPaths)
{
    for (const char* name : {"dm-0", "dm-1", "sda", "sda1"})
        EXPECT_EQ(diskOfNamed(name), "dm-0") << name;
    for (const char* name : {"nvme0n1", "nvme0c10n1", "nvme0n1p1"})
        EXPECT_EQ(diskOfNamed(name), "nvme0n1") << name;
    for (const char* name : {"sdb", "sdb1"})
        EXPECT_EQ(diskOfNamed(name), "sdb") << name;
    EXPECT_EQ(diskOfNamed("vda"), "vda");
}

TEST_F(Disks, AreHardware)
{
    EXPECT_EQ(diskOfNamed("dm-2"), "none");
    for (const char* name : {"loop0", "nbd0", "fd0", "sr0", "emcpowera"})
        EXPECT_EQ(diskOfNamed(name), "none") << name;
    for (const char* name : {"dasda", "mmcblk0"})
        EXPECT_EQ(diskOfNamed(name), name);
}

TEST_F(Disks, AreNotFoundForPartitionsAndPathsOfADiskThatHasVanished)
{
    remove(m_made.sysfs("class/block/sdb"));
    remove(m_made.sysfs("class/block/nvme0n1"));
    m_made.add("pci0000:00/nvme/nvme11", "nvme0c11", "259:3");
    for (const char* name : {"sdb1", "nvme0c10n1", "nvme0c11"})
        EXPECT_EQ(diskOfNamed(name), "none") << name;
}

TEST_F(Disks, HaveADriverOverTheirPathsOrNone)
{
    EXPECT_EQ(pathsOf("dm-0").driver, PathDriver::deviceMapper);
    EXPECT_EQ(pathsOf("nvme0n1").driver, PathDriver::nvme);
    EXPECT_EQ(pathsOf("sdb").driver, PathDriver::none);
    EXPECT_STREQ(driverName(PathDriver::deviceMapper), "device-mapper");
    EXPECT_STREQ(driverName(PathDriver::nvme), "nvme");
    EXPECT_STREQ(driverName(PathDriver::kodmp), "kodmp");
    EXPECT_EQ(driverName(PathDriver::none), nullptr);
}

TEST_F(Disks, AreAskedAboutWhenTheyAreMaps)
{
    pathsOf("nvme0n1");
    pathsOf("sdb");
    EXPECT_EQ(m_asked, 0);
    EXPECT_EQ(shown(pathsOf("dm-0")), "/dev/sda 1 active yes\n");
    EXPECT_EQ(m_asked, 1);
}

TEST_F(Disks, WithoutADriverAreTheirOnlyPath)
{
    EXPECT_EQ(shown(pathsOf("sdb")), "/dev/sdb - active yes\n");
    EXPECT_EQ(shown(pathsOf("vda")), "/dev/vda - active yes\n");
    m_made.set("sdb", "device/state", "offline");
    const DiskPaths offline = pathsOf("sdb");
    EXPECT_EQ(shown(offline), "/dev/sdb - offline no\n");
    EXPECT_EQ(offline.hasUsedPath(), false);
}

TEST_F(Disks, MayLoseTheirPathsWhileTheyAreRead)
{
    const Inventory inventory(m_made.roots());
    const BlockDevice* map = inventory.named("dm-0");
    remove_all(m_made.sysfs("class/block"));
    const DiskPaths disk =
        diskPaths(inventory, *map, [](const BlockDevice&) { return MapStatus{}; });
    EXPECT_EQ(disk.name, "/dev/mapper/mpatha");
    EXPECT_EQ(shown(disk), "");
    EXPECT_EQ(disk.hasUsedPath(), false);
}

} // namespace
