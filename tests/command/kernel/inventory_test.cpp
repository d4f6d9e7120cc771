#include "kernel/inventory.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/made_up_machine.h"

using namespace command;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> pathsOf(const Inventory& inventory)
{
    std::vector<std::string> paths;
    for (const BlockDevice& device : inventory.devices())
        paths.push_back(device.path());
    return paths;
}

std::string pathOf(const BlockDevice* device)
{
    return device == nullptr ? "none" : device->path();
}

/// A multipath map of two disks with a partition, and what a volume group makes of it.
class InventoryOfMultipath : public testing::Test {
protected:
    InventoryOfMultipath()
    {
        m_machine.addDisk("sda", "8:0", "2:0:0:0");
        m_machine.addPartition("sda", "sda1", "8:1");
        m_machine.addDisk("sdb", "8:16", "3:0:0:0");
        m_machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sdb", "sda"});
        m_machine.addMap("dm-1", "254:1", "mpatha-part10", "part10-mpath-3600", {"dm-0"});
        m_machine.addMap("dm-2", "254:2", "mpatha-part2", "part2-mpath-3600", {"dm-0"});
        m_machine.addMap("dm-3", "254:3", "vg-root", "LVM-abc", {"dm-2"});
    }

    MadeUpMachine m_machine;
};

TEST(InventoryOfAnyMachine, WithoutDevicesIsEmpty)
{
    const MadeUpMachine machine;
    const Inventory inventory(machine.roots());
    EXPECT_FALSE(inventory.error());
    EXPECT_THAT(inventory.devices(), IsEmpty());
}

TEST(InventoryOfAnyMachine, WithoutSysfsIsEmptyAndSaysWhy)
{
    const Inventory inventory({"/nonexistent/sys", "/nonexistent/dev"});
    EXPECT_EQ(inventory.error(), std::errc::no_such_file_or_directory);
    EXPECT_THAT(inventory.devices(), IsEmpty());
    EXPECT_EQ(inventory.at("/dev/sda"), nullptr);
    EXPECT_EQ(inventory.numbered({8, 0}), nullptr);
}

TEST(InventoryOfAnyMachine, StandsInTheOrderOfPathsWithNumbersAsNumbers)
{
    MadeUpMachine machine;
    for (const char* name : {"sda10", "sdb", "sda2", "sda", "cciss!c0d0"})
        machine.addVirtual(name,
                           std::string("1:") + std::to_string(std::hash<std::string>()(name)));
    machine.addMap("dm-0", "254:0", "vg-root", "");
    EXPECT_THAT(pathsOf(Inventory(machine.roots())),
                ElementsAre("/dev/cciss/c0d0", "/dev/mapper/vg-root", "/dev/sda", "/dev/sda2",
                            "/dev/sda10", "/dev/sdb"));
}

TEST_F(InventoryOfMultipath, HasEachDeviceOnce)
{
    EXPECT_THAT(pathsOf(Inventory(m_machine.roots())),
                ElementsAre("/dev/mapper/mpatha", "/dev/mapper/mpatha-part2",
                            "/dev/mapper/mpatha-part10", "/dev/mapper/vg-root", "/dev/sda",
                            "/dev/sda1", "/dev/sdb"));
}

TEST_F(InventoryOfMultipath, TellsMembersFromPartitions)
{
    const Inventory inventory(m_machine.roots());
    const BlockDevice& map = *inventory.named("dm-0");
    EXPECT_THAT(pathsOf(inventory.membersOf(map)), ElementsAre("/dev/sda", "/dev/sdb"));
    EXPECT_THAT(pathsOf(inventory.memberOf(map)), IsEmpty());
    EXPECT_THAT(pathsOf(inventory.partitionsOf(map)),
                ElementsAre("/dev/mapper/mpatha-part2", "/dev/mapper/mpatha-part10"));
    const BlockDevice& partition = *inventory.named("dm-2");
    EXPECT_EQ(inventory.parentOf(partition), &map);
    EXPECT_THAT(pathsOf(inventory.membersOf(partition)), IsEmpty());
    EXPECT_THAT(pathsOf(inventory.memberOf(partition)), ElementsAre("/dev/mapper/vg-root"));
}

TEST_F(InventoryOfMultipath, HasPartitionsInTheOrderOfTheirNumbersWhateverTheirNames)
{
    m_machine.addMap("dm-4", "254:4", "mpathap1", "part1-mpath-3600", {"dm-0"});
    const Inventory inventory(m_machine.roots());
    EXPECT_THAT(pathsOf(inventory.partitionsOf(*inventory.named("dm-0"))),
                ElementsAre("/dev/mapper/mpathap1", "/dev/mapper/mpatha-part2",
                            "/dev/mapper/mpatha-part10"));
}

TEST_F(InventoryOfMultipath, HasNoDiskForAPartitionsMapOverSeveralDevices)
{
    m_machine.addMap("dm-4", "254:4", "odd", "part1-mpath-3600", {"sda", "sdb"});
    const Inventory inventory(m_machine.roots());
    EXPECT_EQ(inventory.parentOf(*inventory.named("dm-4")), nullptr);
    EXPECT_THAT(pathsOf(inventory.membersOf(*inventory.named("dm-4"))),
                ElementsAre("/dev/sda", "/dev/sdb"));
}

TEST_F(InventoryOfMultipath, KnowsDisksPathsAndTheirPartitions)
{
    const Inventory inventory(m_machine.roots());
    const BlockDevice& disk = *inventory.named("sda");
    EXPECT_THAT(pathsOf(inventory.memberOf(disk)), ElementsAre("/dev/mapper/mpatha"));
    EXPECT_THAT(pathsOf(inventory.partitionsOf(disk)), ElementsAre("/dev/sda1"));
    EXPECT_EQ(pathOf(inventory.parentOf(*inventory.named("sda1"))), "/dev/sda");
    EXPECT_EQ(inventory.parentOf(disk), nullptr);
}

TEST_F(InventoryOfMultipath, FindsDevicesByNameAndNumber)
{
    const Inventory inventory(m_machine.roots());
    EXPECT_EQ(pathOf(inventory.named("dm-3")), "/dev/mapper/vg-root");
    EXPECT_EQ(pathOf(inventory.mapNamed("vg-root")), "/dev/mapper/vg-root");
    EXPECT_EQ(pathOf(inventory.numbered({8, 16})), "/dev/sdb");
    EXPECT_EQ(inventory.named("sdc"), nullptr);
    EXPECT_EQ(inventory.mapNamed(""), nullptr);
    EXPECT_EQ(inventory.numbered({8, 32}), nullptr);
}

TEST_F(InventoryOfMultipath, FollowsNodesByTheirNumberAndLinks)
{
    create_directories(m_machine.dev("disk/by-id"));
    create_symlink("../../dm-0", m_machine.dev("disk/by-id/wwn-0x3600"));
    m_machine.addNode("emcpowera", "8:16");
    const Inventory inventory(m_machine.roots());
    EXPECT_EQ(pathOf(inventory.at("/dev/disk/by-id/wwn-0x3600")), "/dev/mapper/mpatha");
    EXPECT_EQ(pathOf(inventory.at("/dev/emcpowera")), "/dev/sdb");
    EXPECT_EQ(pathOf(inventory.at(m_machine.dev("dm-3"))), "/dev/mapper/vg-root");
}

TEST_F(InventoryOfMultipath, FindsADeviceWithoutANodeByItsPath)
{
    remove(m_machine.dev("mapper/mpatha"));
    remove(m_machine.dev("sda"));
    const Inventory inventory(m_machine.roots());
    EXPECT_EQ(pathOf(inventory.at("/dev/mapper/mpatha")), "/dev/mapper/mpatha");
    EXPECT_EQ(pathOf(inventory.at("/dev/sda")), "/dev/sda");
    EXPECT_EQ(inventory.at("sda"), nullptr);
    EXPECT_EQ(inventory.nodeAt("/dev/sda").kind(), FileKind::none);
    EXPECT_EQ(inventory.nodeAt("/dev/sdb").kind(), FileKind::blockDevice);
}

TEST_F(InventoryOfMultipath, HasNoDeviceForAFileInANodesPlaceOrALeftoverNode)
{
    remove(m_machine.dev("sda"));
    std::ofstream(m_machine.dev("sda")).put('\n');
    m_machine.addNode("sdz", "65:144");
    const Inventory inventory(m_machine.roots());
    EXPECT_EQ(inventory.at("/dev/sda"), nullptr);
    EXPECT_EQ(inventory.at("/dev/sdz"), nullptr);
}

TEST_F(InventoryOfMultipath, LeavesOutRelativesThatVanish)
{
    remove(m_machine.sysfs("class/block/sdb"));
    remove(m_machine.sysfs("class/block/dm-2"));
    const Inventory inventory(m_machine.roots());
    EXPECT_THAT(pathsOf(inventory.membersOf(*inventory.named("dm-0"))), ElementsAre("/dev/sda"));
    EXPECT_THAT(pathsOf(inventory.membersOf(*inventory.named("dm-3"))), IsEmpty());
}

TEST_F(InventoryOfMultipath, ReadsNoMembersOfLoopAndRamDevices)
{
    for (const auto& [name, number] :
         {std::pair("loop0", "7:0"), {"ram0", "1:0"}, {"zram0", "252:0"}}) {
        m_machine.addVirtual(name, number);
        m_machine.addMember(name, "sdb");
        const Inventory inventory(m_machine.roots());
        EXPECT_THAT(pathsOf(inventory.membersOf(*inventory.named(name))), IsEmpty()) << name;
    }
}

TEST(InventoryOfArrays, AnArrayHasItsDisks)
{
    MadeUpMachine machine;
    machine.addDisk("sda", "8:0", "2:0:0:0");
    machine.addDisk("sdb", "8:16", "2:0:1:0");
    machine.addVirtual("md0", "9:0");
    machine.addMember("md0", "sda");
    machine.addMember("md0", "sdb");
    const Inventory inventory(machine.roots());
    EXPECT_THAT(pathsOf(inventory.membersOf(*inventory.named("md0"))),
                ElementsAre("/dev/sda", "/dev/sdb"));
}

} // namespace
