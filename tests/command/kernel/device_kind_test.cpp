#include "kernel/device_kind.h"

#include <gmock/gmock.h>

using namespace command;

namespace {

TEST(DeviceKind, IsKnownByTheBeginningThatTheDriverGivesItsNames)
{
    const std::vector<std::pair<const char*, DeviceKind>> names{
        {"sda", DeviceKind::disk},         {"sdaab", DeviceKind::disk},
        {"vda", DeviceKind::virtio},       {"nvme0n1", DeviceKind::nvme},
        {"nvme12n3", DeviceKind::nvme},    {"nvme0c3n1", DeviceKind::nvmePath},
        {"md127", DeviceKind::raid},       {"emcpowera", DeviceKind::powerPath},
        {"dm-0", DeviceKind::map},         {"loop0", DeviceKind::loop},
        {"ram15", DeviceKind::ram},        {"zram0", DeviceKind::zram},
        {"sr0", DeviceKind::optical},      {"xvda", DeviceKind::xen},
        {"mmcblk0", DeviceKind::mmc},      {"nvme", DeviceKind::nvme},
        {"dasda", DeviceKind::dasd},       {"nbd15", DeviceKind::nbd},
        {"pmem0", DeviceKind::pmem},       {"rbd0", DeviceKind::rbd},
        {"drbd1", DeviceKind::drbd},       {"bcache0", DeviceKind::bcache},
        {"fd0", DeviceKind::floppy},       {"mtdblock0", DeviceKind::other},
        {"cciss!c0d0", DeviceKind::other}, {"", DeviceKind::other},
    };
    for (const auto& [name, kind] : names)
        EXPECT_EQ(kindName(kindOfKernelName(name)), kindName(kind)) << name;
}

TEST(DeviceKind, OfAMapIsInItsUuid)
{
    const std::vector<std::pair<const char*, DeviceKind>> uuids{
        {"mpath-360014050", DeviceKind::multipath},
        {"part1-mpath-360014050", DeviceKind::multipathPartition},
        {"part15-mpath-360014050", DeviceKind::multipathPartition},
        {"CRYPT-PLAIN-cryptswap1", DeviceKind::crypt},
        {"LVM-abc", DeviceKind::lvm},
        {"DMRAID-isw", DeviceKind::raid},
        {"part1-LVM-abc", DeviceKind::map},
        {"part-mpath-1", DeviceKind::map},
        {"part1", DeviceKind::map},
        {"part1mpath-1", DeviceKind::map},
        {"xpart1-mpath-1", DeviceKind::map},
        {"xmpath-1", DeviceKind::map},
        {"mpath", DeviceKind::map},
        {"", DeviceKind::map},
    };
    for (const auto& [uuid, kind] : uuids)
        EXPECT_EQ(kindName(parseMapUuid(uuid).kind), kindName(kind)) << uuid;
}

TEST(DeviceKind, AMapsUuidHoldsThePartitionsNumberAndTheWwid)
{
    EXPECT_EQ(parseMapUuid("mpath-3600").id, "3600");
    EXPECT_EQ(parseMapUuid("mpath-3600").partnum, std::nullopt);
    EXPECT_EQ(parseMapUuid("part12-mpath-3600").partnum, 12U);
    EXPECT_EQ(parseMapUuid("part3-LVM-abc").partnum, 3U);
    EXPECT_EQ(parseMapUuid("part4294967296-mpath-3600").partnum, std::nullopt);
}

TEST(DeviceKind, EachHasANameOfItsOwn)
{
    const std::vector<std::string> names = kindNames();
    EXPECT_THAT(names, testing::IsSupersetOf({"disk", "multipath-partition", "other"}));
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST(PartitionNumber, StandsBehindTheDisksName)
{
    EXPECT_EQ(partitionNumber("sda", "sda12"), 12U);
    EXPECT_EQ(partitionNumber("nvme0n1", "nvme0n1p2"), 2U);
    EXPECT_EQ(partitionNumber("cciss!c0d0", "cciss!c0d0p1"), 1U);
    EXPECT_EQ(partitionNumber("mmcblk0", "mmcblk0p1"), 1U);
}

TEST(PartitionNumber, OfNearMissesIsNothing)
{
    const std::vector<std::pair<const char*, const char*>> misses{
        {"", "1"},
        {"sda", "sda"},
        {"sda", "sdb1"},
        {"sda", "sdap1"},
        {"nvme0", "nvme0n1"},
        {"nvme0", "nvme0c0n1"},
        {"nvme0n1", "nvme0n12"},
        {"nvme0n1", "nvme0n1"},
        {"nvme0n1", "nvme0n1p"},
        {"mmcblk0", "mmcblk0boot0"},
        {"sda", "sda1x"},
        {"block", "dm-0"},
        {"sda", "sda4294967296"},
    };
    for (const auto& [disk, name] : misses)
        EXPECT_EQ(partitionNumber(disk, name), std::nullopt) << disk << ' ' << name;
}

} // namespace
