#include "checked_devices.h"

namespace {

using command::DeviceReading;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;
using testing::StartsWith;

TEST_F(DeviceChecks, TheDriversAreCounted)
{
    EXPECT_THAT(all(), SizeIs(command::drivers().size()));
    EXPECT_THAT(all(), Each(EndsWith(": not in the kernel; owns 0 of 0 block devices")));
    for (const char* line : {"  8 sd", "120 emcpower", "253 device-mapper", " 65 sdx"})
        machine.addDriver(line);
    machine.addDeviceWithNode("sda");
    machine.addDeviceWithNode("sda1");
    machine.addDeviceWithNode("vda");
    EXPECT_THAT(all(), SizeIs(command::drivers().size()));
    EXPECT_THAT(all(),
                IsSupersetOf({"ok native: in the kernel; owns 2 of 3 block devices",
                              "ok powerpath: in the kernel; owns 0 of 3 block devices",
                              "ok device-mapper: in the kernel; owns 0 of 3 block devices"}));
}

TEST_F(DeviceChecks, ADriverIsKnownByItsWholeName)
{
    machine.addDriver(" 65 sdx");
    EXPECT_THAT(all()[0], HasSubstr("native: not in the kernel"));
}

TEST_F(DeviceChecks, ADriverIsNotMissedWhenTheListCannotBeRead)
{
    std::filesystem::remove(machine.drivers());
    EXPECT_EQ(all()[0], "ok native: perhaps in the kernel, whose list of drivers cannot be read; "
                        "owns 0 of 0 block devices");
}

TEST_F(DeviceChecks, NoNodeIsCalledLeftOverWhenTheKernelsDevicesCannotBeSeen)
{
    machine.addLeftOverNode("emcpowera");
    machine.addLeftOverNode("mapper/mpatha");
    std::filesystem::remove_all(machine.roots().blockFolder());
    EXPECT_THAT(findings(),
                ElementsAre("error " + machine.roots().blockFolder() +
                            ": cannot be read (No such file or directory): which devices there "
                            "are is not known, and no name was examined"));
}

TEST_F(DeviceChecks, WhereKernelAndNamesAgreeNothingIsFound)
{
    machine.addDeviceWithNode("sda");
    machine.addDeviceWithNode("emcpowera1");
    machine.addMapWithNode("mpatha", "mpath-3600");
    machine.addMapWithNode("mpathap1", "part1-mpath-3600");
    machine.addMapWithNode("vg-root", "LVM-abc");
    machine.addDevice("vda");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(DeviceChecks, ANodeIsMissing)
{
    machine.addDevice("sda");
    machine.addDevice("emcpowera");
    EXPECT_THAT(findings(),
                ElementsAre("error /dev/emcpowera: a device of the kernel, but the node is missing",
                            "error /dev/sda: a device of the kernel, but the node is missing"));
}

TEST_F(DeviceChecks, ANodeIsLeftOver)
{
    machine.addLeftOverNode("emcpowera");
    machine.addLeftOverNode("mapper/mpatha");
    machine.addMap("mpathb", "LVM-abc");
    EXPECT_THAT(findings(),
                ElementsAre("warning /dev/emcpowera: a node, but the kernel has no such device",
                            "warning /dev/mapper/mpatha: a node, but the kernel has no such map"));
}

TEST_F(DeviceChecks, AFileIsInPlaceOfANode)
{
    machine.addDevice("sda");
    machine.addFile("sda");
    machine.addMap("mpatha", "mpath-3600");
    machine.addFile("mapper/mpatha");
    machine.addFile("emcpowera");
    machine.addFile("mapper/mpathb");
    EXPECT_THAT(findings(),
                ElementsAre("error /dev/emcpowera: is no block device",
                            "error /dev/mapper/mpatha: a map of the kernel, but what stands in the "
                            "node's place is no block device",
                            "error /dev/mapper/mpathb: is no block device",
                            "error /dev/sda: a device of the kernel, but what stands in the "
                            "node's place is no block device"));
    EXPECT_THAT(findingFor("/dev/sda").advice, StartsWith("Move that away"));
    EXPECT_EQ(remedyFor("/dev/sda"), "mv -n -- /dev/sda /root/ && mknod /dev/sda b 252 0");
    EXPECT_EQ(remedyFor("/dev/mapper/mpatha"),
              "mv -n -- /dev/mapper/mpatha /root/ && dmsetup mknodes -- mpatha");
}

TEST_F(DeviceChecks, ALinkToNowhereIsNoNode)
{
    machine.addMap("mpatha", "mpath-3600");
    std::filesystem::create_symlink("../nowhere", machine.dev("mapper/mpatha"));
    EXPECT_THAT(findings(), ElementsAre("error /dev/mapper/mpatha: a map of the kernel, but the "
                                        "node is missing"));
}

TEST_F(DeviceChecks, GivenPathsAreBlockDevices)
{
    machine.addDeviceWithNode("sda");
    machine.addLeftOverNode("vda");
    machine.addFile("sdb");
    given = {"/dev/sda", "/dev/sdc",    "/dev/sdc",         "/dev/vda", "/dev/sdb",
             "/dev/vdb", "/dev/mapper", machine.dev("sda"), "sda",      ""};
    EXPECT_THAT(findings(),
                ElementsAre("warning /dev/sdc: does not exist, or this user cannot see it",
                            "error /dev/sdb: is no block device",
                            "warning /dev/vdb: does not exist, or this user cannot see it",
                            "error /dev/mapper: is no block device",
                            "warning sda: does not exist, or this user cannot see it",
                            "warning : does not exist, or this user cannot see it"));
    EXPECT_THAT(findingFor("/dev/sdb").advice, HasSubstr("reaches no disk"));
    EXPECT_THAT(findingFor("/dev/sdc").advice, HasSubstr("lost it"));
}

TEST_F(DeviceChecks, WhatWasSaidOfANodeIsNotSaidAgain)
{
    machine.addDevice("sda");
    machine.addDevice("sdb");
    machine.addFile("sdb");
    machine.addFile("emcpowera");
    machine.addMap("mpatha", "mpath-3600");
    const std::vector<std::string> before = all();
    given = {"/dev/sda", "/dev/sdb", "/dev/emcpowera", "/dev/mapper/mpatha"};
    EXPECT_EQ(all(), before);
    EXPECT_EQ(before.size(), command::drivers().size() + given.size());
}

TEST_F(DeviceChecks, GivenPathsAreLookedAtWithoutTheKernelsDevices)
{
    machine.addLeftOverNode("sda");
    machine.addFile("sdb");
    std::filesystem::remove_all(machine.roots().blockFolder());
    given = {"/dev/sda", "/dev/sdb", "/dev/sdc"};
    EXPECT_THAT(findings(),
                ElementsAre(HasSubstr("cannot be read"), "error /dev/sdb: is no block device",
                            "warning /dev/sdc: does not exist, or this user cannot see it"));
}

TEST_F(DeviceChecks, ADeviceThatVanishesMeanwhileIsNotMissed)
{
    machine.addDeviceWithNode("sda");
    const std::vector<DeviceReading> before = machine.readings();
    std::filesystem::remove(machine.dev("sda"));
    std::filesystem::remove(machine.sysfs("class/block/sda"));
    EXPECT_EQ(all(before).size(), all().size());
}

TEST_F(DeviceChecks, AMultipathMapsNodeIsMissing)
{
    machine.addMap("mpatha", "mpath-3600");
    machine.addMap("mpatha-part1", "part1-mpath-3600");
    EXPECT_THAT(
        findings(),
        ElementsAre(
            "error /dev/mapper/mpatha: a map of the kernel, but the node is missing",
            "error /dev/mapper/mpatha-part1: a map of the kernel, but the node is missing"));
}

TEST_F(DeviceChecks, RemedyNamesTheCommand)
{
    machine.addDevice("sda");
    machine.addDevice("sdb;x");
    machine.addMap("mpatha", "mpath-3600");
    machine.addLeftOverNode("mapper/mpathb");
    machine.addLeftOverNode("emcpowera");
    EXPECT_EQ(remedyFor("/dev/sda"), "mknod /dev/sda b 252 0");
    EXPECT_EQ(remedyFor("/dev/sdb;x"), "mknod '/dev/sdb;x' b 252 1");
    EXPECT_EQ(remedyFor("/dev/mapper/mpatha"), "dmsetup mknodes -- mpatha");
    EXPECT_EQ(remedyFor("/dev/mapper/mpathb"), "dmsetup mknodes -- mpathb");
    EXPECT_EQ(remedyFor("/dev/emcpowera"), "rm /dev/emcpowera");
}

TEST_F(DeviceChecks, WhatWasNotAskedAboutIsNotComplainedAbout)
{
    machine.addDevice("sda");
    machine.addDeviceWithNode("sdb");
    machine.addLeftOverNode("emcpowera");
    machine.addMap("mpatha", "mpath-1");
    machine.addMapWithNode("mpathb", "mpath-2");
    given = {"/dev/sdb"};
    EXPECT_THAT(all(), SizeIs(command::drivers().size()));
    EXPECT_THAT(all(), Each(StartsWith("ok ")));
    given = {"/dev/mapper/mpathb"};
    EXPECT_THAT(all().back(), HasSubstr("other tools may read"));
    given = {"/dev/mapper/mpatha"};
    EXPECT_THAT(findings(), ElementsAre(StartsWith("error /dev/mapper/mpatha: ")));
}

TEST_F(DeviceChecks, ASlashStandsForAnExclamationMark)
{
    machine.addDevice("x!dev!sda");
    EXPECT_THAT(findings(), ElementsAre("error /dev/x/dev/sda: a device of the kernel, but the "
                                        "node is missing"));
}

} // namespace
