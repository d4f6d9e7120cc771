#include "doctor/device_checks.h"

#include <gmock/gmock.h>

#include "tests/command/doctor/fake_machine.h"

namespace {

using command::Code;
using command::DeviceReading;
using command::Finding;
using command::Severity;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class DeviceChecks : public testing::Test {
protected:
    /// "SEVERITY DEVICE: TEXT" for each finding.
    std::vector<std::string> all() const { return all(machine.readings()); }

    /// The only finding about the device, besides one about its name alone.
    Finding findingFor(const std::string& device) const
    {
        std::vector<Finding> found;
        const command::Inventory kernel(machine.roots());
        const auto take = [&](const Finding& finding) {
            if (finding.device == device && finding.code != Code::ambiguousNames)
                found.push_back(finding);
        };
        command::checkDevices(kernel, machine.drivers(), machine.readings(), given, take);
        EXPECT_EQ(found.size(), 1U) << device;
        return found.empty() ? Finding{Code::toolReady, "", ""} : found.front();
    }

    std::string remedyFor(const std::string& device) const { return findingFor(device).remedy; }

    std::vector<std::string> all(const std::vector<DeviceReading>& readings) const
    {
        std::vector<std::string> lines;
        const command::Inventory kernel(machine.roots());
        const auto take = [&](const Finding& finding) {
            lines.push_back(std::string(command::severityName(finding.severity())) + ' ' +
                            finding.device + ": " + finding.text);
            const bool mustAct = finding.severity() != Severity::ok;
            EXPECT_EQ(finding.advice.empty(), !mustAct) << lines.back();
        };
        command::checkDevices(kernel, machine.drivers(), readings, given, take);
        return lines;
    }

    /// The findings about single devices, without those about their names alone.
    std::vector<std::string> findings() const
    {
        std::vector<std::string> lines;
        for (const std::string& line : all()) {
            if (line.rfind("ok ", 0) != 0 && line.find("other tools") == std::string::npos)
                lines.push_back(line);
        }
        return lines;
    }

    FakeMachine machine;
    std::vector<std::string> given;
};

TEST_F(DeviceChecks, TheDriversAreCounted)
{
    EXPECT_THAT(all(),
                ElementsAre("ok native: not in the kernel; owns 0 of 0 block devices",
                            "ok powerpath: not in the kernel; owns 0 of 0 block devices",
                            "ok device-mapper: not in the kernel; owns 0 of 0 block devices"));
    for (const char* line : {"  8 sd", "120 emcpower", "253 device-mapper", " 65 sdx"})
        machine.addDriver(line);
    machine.addDeviceWithNode("sda");
    machine.addDeviceWithNode("sda1");
    machine.addDeviceWithNode("nvme0n1");
    EXPECT_THAT(all(), ElementsAre("ok native: in the kernel; owns 2 of 3 block devices",
                                   "ok powerpath: in the kernel; owns 0 of 3 block devices",
                                   "ok device-mapper: in the kernel; owns 0 of 3 block devices"));
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
    machine.addDevice("nvme0n1");
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
    machine.addLeftOverNode("nvme0n1");
    machine.addFile("sdb");
    given = {"/dev/sda",     "/dev/sdc",    "/dev/sdc",         "/dev/nvme0n1", "/dev/sdb",
             "/dev/nvme0n2", "/dev/mapper", machine.dev("sda"), "sda",          ""};
    EXPECT_THAT(findings(),
                ElementsAre("warning /dev/sdc: does not exist, or this user cannot see it",
                            "error /dev/sdb: is no block device",
                            "warning /dev/nvme0n2: does not exist, or this user cannot see it",
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
    EXPECT_EQ(before.size(), 3 + given.size());
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

TEST_F(DeviceChecks, WhatWasNotAskedAboutIsNotComplainedAbout)
{
    machine.addDevice("sda");
    machine.addDeviceWithNode("sdb");
    machine.addLeftOverNode("emcpowera");
    machine.addMap("mpatha", "mpath-1");
    machine.addMapWithNode("mpathb", "mpath-2");
    given = {"/dev/sdb"};
    EXPECT_THAT(all(), ElementsAre(StartsWith("ok native: "), StartsWith("ok powerpath: "),
                                   StartsWith("ok device-mapper: ")));
    given = {"/dev/mapper/mpathb"};
    EXPECT_THAT(all().back(), HasSubstr("other tools may read"));
    given = {"/dev/mapper/mpatha"};
    EXPECT_THAT(findings(), ElementsAre(StartsWith("error /dev/mapper/mpatha: ")));
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

TEST_F(DeviceChecks, ASlashStandsForAnExclamationMark)
{
    machine.addDevice("x!dev!sda");
    EXPECT_THAT(findings(), ElementsAre("error /dev/x/dev/sda: a device of the kernel, but the "
                                        "node is missing"));
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
