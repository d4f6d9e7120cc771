#include "names/agreement.h"

#include <gmock/gmock.h>

#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

class Agreement : public testing::Test {
protected:
    /// "yes", "no" or "-".
    std::string agreement(const std::string& path)
    {
        const Machine machine(m_made.roots());
        const std::optional<bool> same =
            agrees(deviceAnswer(m_manager, path, DeviceLookup(machine)));
        if (!same)
            return "-";
        return *same ? "yes" : "no";
    }

    MadeUpMachine m_made;
    CDmpClaimManager m_manager;
};

TEST_F(Agreement, OfDisksAndTheirPartitions)
{
    m_made.addDisk("sda", "8:0", "2:0:0:0");
    m_made.addPartition("sda", "sda1", "8:1");
    EXPECT_EQ(agreement("/dev/sda"), "yes");
    EXPECT_EQ(agreement("/dev/sda1"), "yes");
    EXPECT_EQ(agreement("/dev/sda2"), "-");
    m_made.addNode("sda3", "8:1");
    EXPECT_EQ(agreement("/dev/sda3"), "no");
}

TEST_F(Agreement, AMultipathMapOwnsItsPaths)
{
    m_made.addDisk("sda", "8:0", "2:0:0:0");
    m_made.addPartition("sda", "sda1", "8:1");
    m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
    EXPECT_EQ(agreement("/dev/mapper/mpatha"), "yes");
    EXPECT_EQ(agreement("/dev/dm-0"), "no");
    EXPECT_EQ(agreement("/dev/sda"), "no");
    EXPECT_EQ(agreement("/dev/sda1"), "no");
}

TEST_F(Agreement, OfPartitionsOfMapsDependsOnTheirNames)
{
    m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600");
    for (const auto& [number, name] :
         {std::pair("1", "mpathap1"), {"2", "mpatha-part2"}, {"3", "mpatha3"}, {"10", "mpathap10"}})
        m_made.addMap(std::string("dm-") + number, std::string("254:") + number, name,
                      std::string("part") + number + "-mpath-3600", {"dm-0"});
    EXPECT_EQ(agreement("/dev/mapper/mpathap1"), "yes");
    EXPECT_EQ(agreement("/dev/mapper/mpatha-part2"), "no");
    EXPECT_EQ(agreement("/dev/mapper/mpatha3"), "no");
    EXPECT_EQ(agreement("/dev/mapper/mpathap10"), "no");
}

TEST_F(Agreement, OfAPartitionOfAnotherDiskThanTheNameTells)
{
    m_made.addMap("dm-0", "254:0", "disk", "mpath-3600");
    m_made.addMap("dm-1", "254:1", "otherp1", "part1-mpath-3600", {"dm-0"});
    EXPECT_EQ(agreement("/dev/mapper/otherp1"), "no");
}

TEST_F(Agreement, OfMapsThatAreNoMultipathDisks)
{
    m_made.addDisk("sda", "8:0", "2:0:0:0");
    m_made.addMap("dm-0", "254:0", "cryptswap1", "CRYPT-PLAIN-cryptswap1", {"sda"});
    m_made.addMap("dm-1", "254:1", "vg-root", "LVM-abc", {"sda"});
    EXPECT_EQ(agreement("/dev/mapper/cryptswap1"), "no");
    EXPECT_EQ(agreement("/dev/mapper/vg-root"), "yes");
    EXPECT_EQ(agreement("/dev/sda"), "yes");
}

TEST_F(Agreement, OfPowerPath)
{
    m_made.addVirtual("emcpowera", "120:0");
    m_made.addPartition("emcpowera", "emcpowera1", "120:1");
    m_made.addDisk("sda", "8:0", "2:0:0:0");
    m_made.addNode("emcpowerb", "8:0");
    EXPECT_EQ(agreement("/dev/emcpowera"), "yes");
    EXPECT_EQ(agreement("/dev/emcpowerb"), "no");
}

TEST_F(Agreement, OfDisksThatNoDriverClaims)
{
    m_made.add("pci0000:00/virtio0/block", "vda", "253:0");
    m_made.addPartition("vda", "vda1", "253:1");
    EXPECT_EQ(agreement("/dev/vda"), "yes");
    EXPECT_EQ(agreement("/dev/vda1"), "yes");
}

TEST_F(Agreement, WithoutAKernelThatIsAskedIsNone)
{
    EXPECT_EQ(agrees(deviceAnswer(m_manager, "/dev/sda")), std::nullopt);
}

} // namespace
