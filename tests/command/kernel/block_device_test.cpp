#include "kernel/block_device.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include "tests/support/made_up_machine.h"

using namespace command;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class BlockDeviceFacts : public testing::Test {
protected:
    BlockDevice device(const std::string& name) const { return {m_roots, name}; }

    MadeUpMachine m_machine;

private:
    KernelRoots m_roots = m_machine.roots();
};

TEST_F(BlockDeviceFacts, OfADiskAreItsAttributes)
{
    m_machine.addDisk("sdb", "8:16", "2:0:10:1");
    m_machine.set("sdb", "size", "2048");
    m_machine.set("sdb", "ro", "1");
    m_machine.set("sdb", "device/wwid", "naa.60014050        ");
    m_machine.set("sdb", "device/access_state", "active/optimized");
    m_machine.set("sdb", "device/preferred_path", "1");
    const BlockDevice disk = device("sdb");
    EXPECT_EQ(disk.kernelName(), "sdb");
    EXPECT_EQ(disk.path(), "/dev/sdb");
    EXPECT_EQ(disk.kind(), DeviceKind::disk);
    EXPECT_EQ(disk.hctl(), "2:0:10:1");
    EXPECT_EQ(disk.partnum(), std::nullopt);
    EXPECT_FALSE(disk.isVirtual());
    EXPECT_EQ(disk.number().value().text(), "8:16");
    EXPECT_EQ(disk.size(), 1048576U);
    EXPECT_EQ(disk.isReadOnly(), true);
    EXPECT_EQ(disk.wwid(), "360014050");
    EXPECT_EQ(disk.state(), "running");
    EXPECT_EQ(disk.accessState(), "active/optimized");
    EXPECT_EQ(disk.isPreferredPath(), true);
    EXPECT_TRUE(disk.isInUse());
}

TEST_F(BlockDeviceFacts, AnIdentifierIsSpelledAsMultipathSpellsIt)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    for (const auto& [kernels, multipaths] :
         {std::pair("naa.5000c500a1b2c3d4", "35000c500a1b2c3d4"),
          std::pair("eui.0025385b71b00001", "20025385b71b00001"),
          std::pair("t10.ATA     DISK  7      A1     ", "1ATA_DISK_7_A1"),
          std::pair("iqn.2003-01.org:naa.1", "iqn.2003-01.org:naa.1"), std::pair("naa", "naa")}) {
        m_machine.set("sda", "device/wwid", kernels);
        EXPECT_EQ(device("sda").wwid(), multipaths);
    }
    m_machine.add("pci0000:00/nvme/nvme0", "nvme0n1", "259:0");
    m_machine.set("nvme0n1", "wwid", "eui.0025385b71b00001");
    EXPECT_EQ(device("nvme0n1").wwid(), "eui.0025385b71b00001");
}

TEST_F(BlockDeviceFacts, ThatTheKernelLacksAreNothing)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    m_machine.set("sda", "size", "many");
    m_machine.set("sda", "stat", "1 2 3");
    m_machine.set("sda", "dev", "eight");
    const BlockDevice disk = device("sda");
    EXPECT_EQ(disk.number(), std::nullopt);
    EXPECT_EQ(disk.size(), std::nullopt);
    EXPECT_EQ(disk.isReadOnly(), std::nullopt);
    EXPECT_EQ(disk.wwid(), std::nullopt);
    EXPECT_EQ(disk.accessState(), std::nullopt);
    EXPECT_EQ(disk.isPreferredPath(), std::nullopt);
    EXPECT_FALSE(disk.ioCounters().has_value());
    EXPECT_THAT(disk.slaves(), IsEmpty());
    EXPECT_THAT(disk.links(), IsEmpty());
}

TEST_F(BlockDeviceFacts, OfADeviceThatVanishesAreNothing)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    m_machine.set("sda", "size", "8");
    const BlockDevice disk = device("sda");
    EXPECT_EQ(disk.size(), 4096U);
    remove(m_machine.sysfs("class/block/sda"));
    EXPECT_EQ(disk.size(), std::nullopt);
    EXPECT_EQ(disk.kind(), DeviceKind::disk);
    EXPECT_EQ(device("sda").kind(), DeviceKind::disk);
    EXPECT_EQ(device("sda").hctl(), "");
}

TEST_F(BlockDeviceFacts, AnAddressHasFourNumbers)
{
    m_machine.add("rbd/0/block", "rbd0", "250:0");
    m_machine.add("bus/1:2:3/block", "sda", "8:0");
    m_machine.add("bus/1:2:3:x/block", "sdb", "8:16");
    for (const char* name : {"rbd0", "sda", "sdb"})
        EXPECT_EQ(device(name).hctl(), "") << name;
}

TEST_F(BlockDeviceFacts, AFifoInAnAttributesPlaceIsNothing)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    ASSERT_EQ(mkfifo(m_machine.sysfs("class/block/sda/size").c_str(), 0600), 0);
    EXPECT_EQ(device("sda").size(), std::nullopt);
}

TEST_F(BlockDeviceFacts, OfAPartitionAreItsNumberAndItsDisk)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    m_machine.addPartition("sda", "sda12", "8:12");
    const BlockDevice partition = device("sda12");
    EXPECT_EQ(partition.kind(), DeviceKind::partition);
    EXPECT_EQ(partition.partnum(), 12U);
    EXPECT_EQ(partition.container(), "sda");
    EXPECT_EQ(partition.hctl(), "");
}

TEST_F(BlockDeviceFacts, OfAMapComeFromItsNameAndUuid)
{
    m_machine.addMap("dm-0", "254:0", "mpatha", "mpath-360014050");
    m_machine.addMap("dm-1", "254:1", "mpatha-part2", "part2-mpath-360014050");
    m_machine.set("dm-0", "dm/suspended", "0");
    m_machine.set("dm-1", "dm/suspended", "1");
    EXPECT_EQ(device("dm-0").kind(), DeviceKind::multipath);
    EXPECT_EQ(device("dm-0").path(), "/dev/mapper/mpatha");
    EXPECT_EQ(device("dm-0").wwid(), "360014050");
    EXPECT_EQ(device("dm-0").state(), "running");
    EXPECT_TRUE(device("dm-0").isVirtual());
    EXPECT_EQ(device("dm-1").kind(), DeviceKind::multipathPartition);
    EXPECT_EQ(device("dm-1").partnum(), 2U);
    EXPECT_EQ(device("dm-1").wwid(), std::nullopt);
    EXPECT_EQ(device("dm-1").state(), "suspended");
}

TEST_F(BlockDeviceFacts, AMapWithoutANameHasTheKernelsPath)
{
    m_machine.addVirtual("dm-7", "254:7");
    EXPECT_EQ(device("dm-7").kind(), DeviceKind::map);
    EXPECT_EQ(device("dm-7").path(), "/dev/dm-7");
}

TEST_F(BlockDeviceFacts, AnExclamationMarkInTheKernelsNameIsASlashInThePath)
{
    m_machine.addVirtual("loop0", "7:0");
    EXPECT_EQ(device("cciss!c0d0").path(), "/dev/cciss/c0d0");
}

TEST_F(BlockDeviceFacts, ALinkMayLeadToADeviceBesideIt)
{
    create_directory_symlink("sda", m_machine.sysfs("class/block/sda1"));
    EXPECT_EQ(device("sda1").container(), "");
    EXPECT_EQ(device("sda1").hctl(), "");
    EXPECT_EQ(device("sda1").partnum(), std::nullopt);
}

TEST_F(BlockDeviceFacts, IoCountersAreInBytes)
{
    m_machine.addDisk("sda", "8:0", "2:0:0:0");
    m_machine.set("sda", "stat", "  10 1 20 3 40 5 60 7 8 9 100 11 12 13 14 15 16");
    const IoCounters counters = device("sda").ioCounters().value();
    EXPECT_EQ(counters.reads, 10U);
    EXPECT_EQ(counters.readBytes, 20U * 512);
    EXPECT_EQ(counters.writes, 40U);
    EXPECT_EQ(counters.writtenBytes, 60U * 512);
    EXPECT_EQ(counters.inFlight, 8U);
    EXPECT_EQ(counters.busyMilliseconds, 9U);
}

TEST_F(BlockDeviceFacts, LoopAndRamDevicesAreInUseOnceTheyAreSetUp)
{
    for (const char* name : {"loop0", "zram0", "ram0"})
        m_machine.addVirtual(name, "1:" + std::to_string(name[0]));
    m_machine.set("ram0", "size", "32768");
    m_machine.set("ram0", "stat", "5 0 40 0 0 0 0 0 0 0 0");
    for (const char* name : {"loop0", "zram0", "ram0"})
        EXPECT_FALSE(device(name).isInUse()) << name;
    m_machine.set("loop0", "size", "8");
    m_machine.set("zram0", "size", "8");
    m_machine.set("ram0", "stat", "5 0 40 0 1 0 8 0 0 0 0");
    for (const char* name : {"loop0", "zram0", "ram0"})
        EXPECT_TRUE(device(name).isInUse()) << name;
}

TEST_F(BlockDeviceFacts, ARamDiskWithoutCountersIsNotInUse)
{
    m_machine.addVirtual("ram0", "1:0");
    EXPECT_FALSE(device("ram0").isInUse());
}

TEST_F(BlockDeviceFacts, ARamDiskThatAnotherDeviceStandsOnIsInUse)
{
    m_machine.addVirtual("ram0", "1:0");
    m_machine.addMap("dm-0", "254:0", "x", "CRYPT-x", {"ram0"});
    EXPECT_TRUE(device("ram0").isInUse());
    EXPECT_THAT(device("ram0").holders(), ElementsAre("dm-0"));
    EXPECT_THAT(device("dm-0").slaves(), ElementsAre("ram0"));
}

} // namespace
