#include "paths/disk_reader.h"

#include <gmock/gmock.h>

#include "tests/command/multipath/shown_paths.h"
#include "tests/support/made_up_machine.h"

using namespace command;
using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = DiskAnswer::Outcome;

namespace {

/// A map over sda and sdb, an NVMe disk, and the disks sdc, sdd and vda.
class DiskReading : public testing::Test {
protected:
    DiskReading()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addDisk("sdb", "8:16", "3:0:0:0");
        m_made.addDisk("sdc", "8:32", "2:0:0:1");
        m_made.addPartition("sdc", "sdc1", "8:33");
        m_made.addDisk("sdd", "8:48", "3:0:0:1");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        m_made.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
        m_made.addMap("dm-2", "254:2", "vg-lv", "LVM-x", {"dm-1"});
        m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        m_made.add("pci0000:00/nvme/nvme0", "nvme0c0n1", "259:1");
        m_made.add("pci0000:00/virtio0/block", "vda", "253:0");
    }

    DiskList read(const WantedDisks& wanted = {}) const
    {
        return readDisks(
            {m_made.roots(), [&](const BlockDevice&) { return m_status; }, m_volumeManager},
            wanted);
    }

    static std::vector<std::string> names(const DiskList& list)
    {
        std::vector<std::string> names;
        for (const DiskPaths& disk : list.disks)
            names.push_back(disk.name);
        return names;
    }

    /// The volume manager has the node arr0_17 with the paths sdc and sdd.
    void installVolumeManager()
    {
        const auto answerWith = [&](const std::string& node) {
            DiskAnswer answer;
            answer.outcome = node == "arr0_17" ? Outcome::answered : Outcome::refused;
            answer.node = node;
            answer.pathTable = {"NAME STATE TYPE", "====", "sdc ENABLED(A) PRIMARY",
                                "sdd ENABLED SECONDARY"};
            return answer;
        };
        m_volumeManager.askAboutNode = answerWith;
        m_volumeManager.askAboutDisk = [this, answerWith](const std::string& path) {
            m_asked.push_back(path);
            return answerWith(path == "/dev/sdc" || path == "/dev/sdd" ? "arr0_17" : "");
        };
    }

    MadeUpMachine m_made;
    MapStatus m_status{{}, "multipath", "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"};
    VolumeManager m_volumeManager;
    std::vector<std::string> m_asked; // disks
};

TEST_F(DiskReading, HasEachDiskOfSeveralPathsOnce)
{
    const DiskList list = read();
    EXPECT_THAT(names(list), ElementsAre("/dev/mapper/mpatha", "/dev/nvme0n1"));
    EXPECT_EQ(shown(list.disks[0]), "/dev/sda 1 active yes\n/dev/sdb 2 standby no\n");
    EXPECT_THAT(list.notes, IsEmpty());
}

TEST_F(DiskReading, MayHaveDisksOfOnePath)
{
    EXPECT_THAT(names(read({{}, true})), ElementsAre("/dev/mapper/mpatha", "/dev/nvme0n1",
                                                     "/dev/sdc", "/dev/sdd", "/dev/vda"));
}

TEST_F(DiskReading, FindsADiskByItsPathsPartitionsNamesAndNumbers)
{
    for (const char* given : {"/dev/mapper/mpatha", "/dev/mapper/mpathap1", "/dev/sda", "/dev/sdb",
                              "dm-0", "sdb", "254:1"})
        EXPECT_THAT(names(read({{given}})), ElementsAre("/dev/mapper/mpatha")) << given;
    EXPECT_THAT(names(read({{"nvme0c0n1"}})), ElementsAre("/dev/nvme0n1"));
    EXPECT_THAT(names(read({{"/dev/sdc1"}})), ElementsAre("/dev/sdc"));
    EXPECT_THAT(names(read({{"sda", "sdb", "dm-0"}})), ElementsAre("/dev/mapper/mpatha"));
}

TEST_F(DiskReading, SaysWhatIsNoDisk)
{
    const DiskList list = read({{"/dev/mapper/vg-lv", "/dev/sdx", "arr0_17", "sda"}});
    EXPECT_THAT(list.notes,
                ElementsAre("'/dev/mapper/vg-lv' is no disk, and no partition or path of one; it "
                            "consists of /dev/mapper/mpathap1",
                            "'/dev/sdx' is no block device of this machine",
                            "'arr0_17' is no block device of this machine"));
    EXPECT_THAT(names(list), ElementsAre("/dev/mapper/mpatha"));
    EXPECT_EQ(list.exitStatus(), 32);
}

TEST_F(DiskReading, SaysNothingOfWhatADeviceConsistsOfThatHasNoMembers)
{
    m_made.addVirtual("loop0", "7:0");
    EXPECT_THAT(read({{"loop0"}}).notes,
                ElementsAre("'loop0' is no disk, and no partition or path of one"));
}

TEST_F(DiskReading, AsksTheVolumeManagerOnceForEachOfItsNodes)
{
    installVolumeManager();
    const DiskList list = read();
    EXPECT_THAT(names(list), ElementsAre("/dev/mapper/mpatha", "/dev/nvme0n1", "arr0_17"));
    EXPECT_EQ(shown(list.disks[2]), "/dev/sdc PRIMARY active yes\n/dev/sdd SECONDARY standby no\n");
    EXPECT_THAT(m_asked, ElementsAre("/dev/sdc"));
}

TEST_F(DiskReading, FindsANodeByItsNameItsPathsAndTheirPartitions)
{
    installVolumeManager();
    for (const char* given : {"arr0_17", "/dev/sdc1", "sdd"})
        EXPECT_THAT(names(read({{given}})), ElementsAre("arr0_17")) << given;
    EXPECT_THAT(names(read({{"sdd", "arr0_17", "sdc"}})), ElementsAre("arr0_17"));
    EXPECT_EQ(read({{"arr0_18"}}).exitStatus(), 32);
}

TEST_F(DiskReading, TellsWhyTheVolumeManagerDidNotAnswerAndAsksNothingMore)
{
    m_volumeManager.askAboutDisk = [this](const std::string& path) {
        m_asked.push_back(path);
        DiskAnswer answer;
        answer.path = path;
        answer.outcome = Outcome::hangs;
        answer.reason = "took more than 30 seconds";
        answer.command = "kodmpadm x";
        return answer;
    };
    const DiskList list = read({{}, true});
    EXPECT_THAT(m_asked, ElementsAre("/dev/sdc"));
    EXPECT_THAT(
        list.notes,
        ElementsAre("the volume manager's paths of /dev/sdc are not known: kodmpadm x: took "
                    "more than 30 seconds; nothing more was asked"));
    EXPECT_EQ(names(list).size(), 5U);
}

TEST_F(DiskReading, TellsWhyTheVolumeManagerDidNotAnswerAndAsksOn)
{
    m_volumeManager.askAboutDisk = [](const std::string& path) {
        DiskAnswer answer;
        answer.path = path;
        answer.outcome = Outcome::failed;
        answer.reason = "ended with status 1";
        answer.command = "kodmpadm x";
        return answer;
    };
    EXPECT_THAT(read().notes, ElementsAre("the volume manager's paths of /dev/sdc are not known: "
                                          "kodmpadm x: ended with status 1",
                                          "the volume manager's paths of /dev/sdd are not known: "
                                          "kodmpadm x: ended with status 1"));
}

TEST_F(DiskReading, TellsNothingOfDisksThatTheVolumeManagerDoesNotHold)
{
    for (const Outcome outcome : {Outcome::refused, Outcome::noNode, Outcome::misnamed}) {
        m_volumeManager.askAboutDisk = [this, outcome](const std::string& path) {
            m_asked.push_back(path);
            DiskAnswer answer;
            answer.outcome = outcome;
            return answer;
        };
        m_asked.clear();
        const DiskList list = read({{}, true});
        EXPECT_THAT(m_asked, ElementsAre("/dev/sdc", "/dev/sdd"));
        EXPECT_THAT(list.notes, IsEmpty());
        EXPECT_EQ(names(list).size(), 5U);
    }
}

TEST_F(DiskReading, TellsOnceWhatRootWouldSee)
{
    m_made.addMap("dm-3", "254:3", "mpathb", "mpath-3601", {"sdc"});
    m_status = {std::make_error_code(std::errc::permission_denied), {}, {}};
    const DiskList list = read();
    EXPECT_THAT(
        list.notes,
        ElementsAre("only root may ask the device-mapper which paths of a map are used, and "
                    "which have failed: run this as root to see GROUP, STATE and USED of 2 "
                    "disks"));
    m_status.error = std::make_error_code(std::errc::operation_not_permitted);
    EXPECT_EQ(read().notes, list.notes);
    m_status.error = std::make_error_code(std::errc::no_such_file_or_directory);
    EXPECT_THAT(read({{"sda"}}).notes,
                ElementsAre("the device-mapper does not tell GROUP, STATE and USED of 1 disk: No "
                            "such file or directory"));
}

TEST_F(DiskReading, CannotBeMadeWithoutSysfs)
{
    remove_all(m_made.sysfs("class"));
    EXPECT_THROW(read(), std::system_error);
}

class PathsStatus : public DiskReading {
protected:
    int statusWith(const std::string& parameters)
    {
        m_status = {{}, "multipath", parameters};
        return read({{"dm-0"}}).exitStatus();
    }
};

TEST_F(PathsStatus, TellsOfLostAndUsedPaths)
{
    EXPECT_EQ(statusWith("2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0"), 0);
    EXPECT_EQ(statusWith("2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 F 1"), 64);
    EXPECT_EQ(statusWith("2 0 1 0 2 1 A 0 1 0 8:0 F 1 E 0 1 0 8:16 F 1"), 32);
}

TEST_F(PathsStatus, TellsThatStatesAreNotKnownWhenNothingWorseIs)
{
    m_status = {std::make_error_code(std::errc::permission_denied), {}, {}};
    EXPECT_EQ(read({{"dm-0"}}).exitStatus(), 1);
    m_made.set("sda", "device/state", "offline");
    EXPECT_EQ(read({{"dm-0"}}).exitStatus(), 64);
    m_made.set("sdb", "device/state", "offline");
    EXPECT_EQ(read({{"dm-0"}}).exitStatus(), 32);
}

} // namespace
