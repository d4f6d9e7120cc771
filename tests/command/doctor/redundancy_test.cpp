#include "doctor/redundancy.h"

#include <gmock/gmock.h>

#include "doctor/kernel_disks.h"
#include "tests/support/made_up_machine.h"

namespace {

using command::Code;
using command::ExaminedPath;
using command::Finding;
using command::MultipathDisk;
using command::PathState;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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

class KernelDisks : public testing::Test {
protected:
    std::vector<std::string> disks() const
    {
        const command::Inventory inventory(machine.roots());
        std::vector<std::string> lines;
        for (const MultipathDisk& disk : command::kernelDisks(
                 inventory, [&](const command::BlockDevice&) { return m_status; })) {
            std::string line = disk.device + ' ' + disk.driver + ':';
            for (const ExaminedPath& path : disk.paths)
                line += ' ' + path.name + ' ' + command::pathStateName(path.state) +
                        (path.isUsed ? " used" : "");
            lines.push_back(line);
        }
        return lines;
    }

    void addMap()
    {
        machine.addDisk("sda", "8:0", "2:0:0:0");
        machine.addDisk("sdb", "8:16", "3:0:0:0");
        machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
    }

    MadeUpMachine machine;
    command::MapStatus m_status{std::make_error_code(std::errc::permission_denied), {}, {}};
};

TEST_F(KernelDisks, AreMapsOfTheMultipathDaemon)
{
    addMap();
    machine.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
    machine.addMap("dm-2", "254:2", "vg-root", "LVM-1", {"dm-1"});
    EXPECT_THAT(disks(), ElementsAre("/dev/mapper/mpatha device-mapper: sda unknown sdb unknown"));
}

TEST_F(KernelDisks, HaveTheStatesThatTheDeviceMapperTellsRoot)
{
    addMap();
    m_status = {{}, "multipath", "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 F 1"};
    EXPECT_THAT(disks(),
                ElementsAre("/dev/mapper/mpatha device-mapper: sda active used sdb failed"));
}

TEST_F(KernelDisks, HaveThePathsThatTheKernelTookOffline)
{
    addMap();
    for (const char* state : {"offline", "transport-offline"}) {
        machine.set("sdb", "device/state", state);
        EXPECT_THAT(disks(), ElementsAre(HasSubstr("sda unknown sdb offline"))) << state;
    }
}

TEST_F(KernelDisks, LoseAPathThatIsRemoved)
{
    machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600");
    EXPECT_THAT(disks(), ElementsAre("/dev/mapper/mpatha device-mapper:"));
}

TEST_F(KernelDisks, AreNotThoseOfOnePath)
{
    machine.addDisk("sda", "8:0", "2:0:0:0");
    machine.add("pci0000:00/nvme/nvme0", "nvme0n1", "259:0");
    EXPECT_THAT(disks(), IsEmpty());
}

class NvmeDisk : public KernelDisks {
protected:
    NvmeDisk()
    {
        machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        for (const char* controller : {"nvme0", "nvme1"}) {
            create_directories(machine.sysfs("class/nvme-subsystem/nvme-subsys0/") /= controller);
            setState(controller, "live");
        }
        for (const char* path : {"nvme0c0n1", "nvme0c1n1"}) {
            machine.addVirtual(path, path[6] == '0' ? "259:1" : "259:2");
            machine.set(path, "ana_state", "optimized");
        }
    }

    void setState(const std::string& controller, const std::string& state) const
    {
        const std::filesystem::path folder = machine.sysfs("class/nvme/" + controller);
        create_directories(folder);
        std::ofstream(folder / "state") << state << '\n';
    }
};

TEST_F(NvmeDisk, HasThePathsOfItsControllers)
{
    EXPECT_THAT(disks(),
                ElementsAre("/dev/nvme0n1 nvme: nvme0c0n1 active used nvme0c1n1 active used"));
}

TEST_F(NvmeDisk, LosesThePathOfAControllerThatIsNotLive)
{
    setState("nvme1", "connecting");
    EXPECT_THAT(disks(), ElementsAre("/dev/nvme0n1 nvme: nvme0c0n1 active used nvme0c1n1 failed"));
}

TEST_F(NvmeDisk, HasNoPathThroughALiveControllerWithoutItsDevice)
{
    std::filesystem::remove(machine.sysfs("class/block/nvme0c1n1"));
    EXPECT_THAT(disks(), ElementsAre("/dev/nvme0n1 nvme: nvme0c0n1 active used"));
}

TEST_F(NvmeDisk, HasTheAccessStateOfTheArray)
{
    const std::pair<const char*, const char*> states[] = {{"non-optimized", "standby"},
                                                          {"inaccessible", "standby"},
                                                          {"change", "standby"},
                                                          {"persistent-loss", "failed"}};
    for (const auto& [access, state] : states) {
        machine.set("nvme0c1n1", "ana_state", access);
        EXPECT_THAT(disks(), ElementsAre(testing::EndsWith(std::string("nvme0c1n1 ") + state)));
    }
}

} // namespace
