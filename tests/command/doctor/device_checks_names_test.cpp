// Devices whose names the library reads differently from the kernel or from other tools.
#include "checked_devices.h"

namespace {

using command::Code;
using command::Finding;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(DeviceChecks, ADiskIsTakenForSomethingElse)
{
    machine.addMapWithNode("a-disk", "mpath-1");
    machine.addMapWithNode("mp1", "mpath-2");
    EXPECT_THAT(
        findings(),
        ElementsAre("warning /dev/mapper/a-disk: a multipath disk, but no driver claims its name",
                    "warning /dev/mapper/mp1: a multipath disk, but the library takes it for a "
                    "partition"));
}

TEST_F(DeviceChecks, APartitionIsTakenForSomethingElse)
{
    machine.addMapWithNode("mpatha-part1", "part1-mpath-1");
    machine.addMapWithNode("mpathb1", "part1-mpath-2");
    EXPECT_THAT(
        findings(),
        ElementsAre("note /dev/mapper/mpatha-part1: a partition of a multipath disk, but no "
                    "driver claims its name",
                    "warning /dev/mapper/mpathb1: a partition of a multipath disk, but the "
                    "library takes it for a disk"));
}

TEST_F(DeviceChecks, SomethingElseIsTakenForADisk)
{
    machine.addMapWithNode("luks", "CRYPT-LUKS2-1");
    machine.addMapWithNode("luksp1", "");
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("note /dev/mapper/luks: the library takes it for a "),
                            StartsWith("note /dev/mapper/luksp1: the library takes it for a ")));
}

TEST_F(DeviceChecks, APartitionIsRenamedThroughItsDisk)
{
    machine.addMapWithNode("disk one", "mpath-1");
    machine.addMapWithNode("disk one1", "part1-mpath-1", {"dm-0"});
    EXPECT_EQ(remedyFor("/dev/mapper/disk one1"), "kpartx -a -p p '/dev/mapper/disk one'");
}

TEST_F(DeviceChecks, NothingIsTypedForAPartitionThatNoNameHelps)
{
    machine.addMapWithNode("mpatha", "mpath-1");
    machine.addMapWithNode("mpathap12", "part12-mpath-1", {"dm-0"});
    const Finding finding = findingFor("/dev/mapper/mpathap12");
    EXPECT_EQ(finding.code, Code::partitionAsDisk);
    EXPECT_EQ(finding.remedy, "");
    EXPECT_THAT(finding.advice, StartsWith("Ask about the disk."));
}

TEST_F(DeviceChecks, APartitionWhoseDiskIsGoneHasNothingToType)
{
    machine.addMapWithNode("mpathb1", "part1-mpath-2");
    EXPECT_EQ(remedyFor("/dev/mapper/mpathb1"), "");
}

TEST_F(DeviceChecks, TwoDriversClaimAName)
{
    machine.addDevice("mapper!dev!sda");
    machine.addDevice("sda!dev!emcpowera");
    EXPECT_THAT(findings(), Contains("warning /dev/sda/dev/emcpowera: native and powerpath claim "
                                     "it, and powerpath gets it"));
    EXPECT_THAT(findings(), Contains("warning /dev/mapper/dev/sda: native and device-mapper claim "
                                     "it, and device-mapper gets it"));
}

TEST_F(DeviceChecks, NamesThatAreReadDifferentlyAreCounted)
{
    machine.addDeviceWithNode("sda");
    EXPECT_THAT(all(), Not(Contains(HasSubstr("other tools"))));
    machine.addMapWithNode("mpatha", "mpath-1");
    machine.addMapWithNode("mpathb", "mpath-2");
    EXPECT_EQ(all().back(), "note /dev/mapper/mpatha: other tools may read or name it differently, "
                            "as 2 of 5 block devices");
}

} // namespace
