#include "doctor/redundancy.h"

#include <gmock/gmock.h>

#include <fstream>

#include "doctor/kernel_disks.h"
#include "tests/support/made_up_machine.h"

namespace {

using command::Code;
using command::ExaminedPath;
using command::Finding;
using command::MultipathDisk;
using command::PathState;
using testing::HasSubstr;

const ExaminedPath active{"sdb", PathState::active, true};
const ExaminedPath standby{"sdc", PathState::standby};
const ExaminedPath failed{"sdd", PathState::failed};
const ExaminedPath offline{"sde", PathState::offline};

std::vector<Finding> found(const MultipathDisk& disk, std::size_t expected = 0)
{
    std::vector<Finding> findings;
    command::checkRedundancy(disk, expected,
                             [&](const Finding& finding) { findings.push_back(finding); });
    return findings;
}

std::vector<Finding> found(const std::vector<ExaminedPath>& paths, std::size_t expected = 0)
{
    return found(MultipathDisk{"/dev/mapper/mpatha", "device-mapper", paths}, expected);
}

Code codeFor(const std::vector<ExaminedPath>& paths)
{
    return found(paths).front().code;
}

TEST(Redundancy, PathsThatCanAllBeUsedAreFine)
{
    const std::vector<Finding> findings = found({active, standby});
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, Code::pathsUsable);
    EXPECT_EQ(findings[0].text, "2 paths, sdb carries the I/O");
    EXPECT_EQ(found({active, active})[0].text, "2 paths, sdb and others carry the I/O");
    EXPECT_EQ(found({standby})[0].text, "1 path");
}

TEST(Redundancy, OnePathLeftOfSeveralIsAWarning)
{
    const Finding finding = found({active, failed}).front();
    EXPECT_EQ(finding.code, Code::onePathLeft);
    EXPECT_EQ(finding.text, "sdd failed; 1 of 2 paths is left");
    EXPECT_EQ(finding.remedy, "multipath -ll /dev/mapper/mpatha");
    EXPECT_EQ(finding.severity(), command::Severity::warning);
}

TEST(Redundancy, ALostPathOfManyIsAWarning)
{
    const Finding finding = found({active, standby, failed, offline}).front();
    EXPECT_EQ(finding.code, Code::pathLost);
    EXPECT_EQ(finding.text, "sdd failed, sde offline; 2 of 4 paths are left");
    EXPECT_EQ(finding.severity(), command::Severity::warning);
}

TEST(Redundancy, NoPathLeftIsAnError)
{
    const Finding finding = found({failed, offline}).front();
    EXPECT_EQ(finding.code, Code::noPath);
    EXPECT_EQ(finding.text, "no path is left: sdd failed, sde offline");
    EXPECT_EQ(finding.severity(), command::Severity::error);
    EXPECT_EQ(found(std::vector<ExaminedPath>{}).front().text, "it has no path");
}

TEST(Redundancy, AStateThatIsNotKnownIsNoLoss)
{
    EXPECT_EQ(codeFor({{"sdb", PathState::unknown}}), Code::pathsUsable);
}

TEST(Redundancy, FewerPathsThanExpectedAreAWarning)
{
    EXPECT_EQ(found({active, standby}, 2).size(), 1U);
    const std::vector<Finding> findings = found({active, standby}, 4);
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].code, Code::fewerPaths);
    EXPECT_EQ(findings[1].text, "has 2 paths, but 4 are expected: some are gone");
    EXPECT_EQ(found({active}, 2)[1].text, "has 1 path, but 2 are expected: one is gone");
}

TEST(Redundancy, TheRemedyShowsThePathsOfTheDriver)
{
    EXPECT_EQ(found(MultipathDisk{"/dev/nvme0n1", "nvme", {failed}})[0].remedy,
              "nvme list-subsys /dev/nvme0n1");
    EXPECT_EQ(found(MultipathDisk{"arr$0", "kodmp", {failed}})[0].remedy,
              "/usr/sbin/kodmpadm   getsubpaths  'dmpnodename=arr$0'");
}

TEST(Redundancy, OfOnePathIsToldAlone)
{
    const MultipathDisk disk{"/dev/mapper/mpatha", "device-mapper", {active, failed, offline}};
    std::vector<Finding> findings;
    const auto take = [&](const Finding& finding) { findings.push_back(finding); };
    command::checkPath(disk, "sdb", take);
    command::checkPath(disk, "sdx", take);
    EXPECT_TRUE(findings.empty());
    command::checkPath(disk, "sdd", take);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, Code::pathFailed);
    EXPECT_EQ(findings[0].device, "/dev/sdd");
    EXPECT_EQ(findings[0].text, "a path of /dev/mapper/mpatha, and failed");
}

TEST(Redundancy, StatesThatOnlyRootMayKnowAreANote)
{
    MultipathDisk disk{"/dev/mapper/mpatha", "device-mapper", {active}};
    std::vector<Finding> findings;
    const auto take = [&](const Finding& finding) { findings.push_back(finding); };
    command::checkStates({disk}, take);
    EXPECT_TRUE(findings.empty());
    MultipathDisk hidden = disk;
    hidden.error = std::make_error_code(std::errc::permission_denied);
    command::checkStates({disk, hidden, hidden}, take);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, Code::statesUnknown);
    EXPECT_EQ(findings[0].severity(), command::Severity::note);
    EXPECT_THAT(findings[0].text, HasSubstr("(Permission denied), as of 2 of 3 disks: "));
}

/// Kernel and device-mapper of a made-up machine.
class KernelDisks : public testing::Test {
protected:
    std::vector<MultipathDisk> disks() const
    {
        const command::Inventory inventory(machine.roots());
        return command::kernelDisks(inventory,
                                    [this](const command::BlockDevice&) { return status; });
    }

    static std::string shown(const MultipathDisk& disk)
    {
        std::string line = disk.device + ' ' + disk.driver + ':';
        for (const ExaminedPath& path : disk.paths)
            line += ' ' + path.name + ' ' + command::pathStateName(path.state) +
                    (path.isUsed ? " used" : "");
        return line;
    }

    void addMap()
    {
        machine.addDisk("sda", "8:0", "2:0:0:0");
        machine.addDisk("sdb", "8:16", "3:0:0:0");
        machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
    }

    MadeUpMachine machine;
    command::MapStatus status{std::make_error_code(std::errc::permission_denied), "", ""};
};

TEST_F(KernelDisks, AreMapsOfTheMultipathDaemonAsTheDeviceMapperKnowsThem)
{
    addMap();
    machine.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
    machine.addMap("dm-2", "254:2", "vg-root", "LVM-1", {"dm-1"});
    status = {{}, "multipath", "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 F 3"};
    const std::vector<MultipathDisk> found = disks();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(shown(found[0]), "/dev/mapper/mpatha device-mapper: sda active used sdb failed");
    EXPECT_FALSE(found[0].error);
}

TEST_F(KernelDisks, HaveForOtherUsersThePathsThatTheKernelTookOffline)
{
    addMap();
    machine.set("sdb", "device/state", "offline");
    const std::vector<MultipathDisk> found = disks();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(shown(found[0]), "/dev/mapper/mpatha device-mapper: sda unknown sdb offline");
    EXPECT_EQ(found[0].error, std::errc::permission_denied);
}

TEST_F(KernelDisks, AreNvmeDisksOfSubsystems)
{
    machine.add("pci0000:00/nvme/nvme9", "nvme9n1", "259:9");
    machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
    for (const char* controller : {"nvme0", "nvme1"}) {
        create_directories(machine.sysfs("class/nvme-subsystem/nvme-subsys0") / controller);
        create_directories(machine.sysfs("class/nvme") / controller);
    }
    std::ofstream(machine.sysfs("class/nvme/nvme0/state")) << "live\n";
    std::ofstream(machine.sysfs("class/nvme/nvme1/state")) << "connecting\n";
    machine.addVirtual("nvme0c0n1", "259:1");
    machine.addVirtual("nvme0c1n1", "259:2");
    const std::vector<MultipathDisk> found = disks();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(shown(found[0]), "/dev/nvme0n1 nvme: nvme0c0n1 active used nvme0c1n1 failed");
}

TEST_F(KernelDisks, AreNotThoseOfOnePath)
{
    machine.addDisk("sda", "8:0", "2:0:0:0");
    EXPECT_TRUE(disks().empty());
}

} // namespace
