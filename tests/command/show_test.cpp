// `dmpclaim show` and `dmpclaim explain` on made-up machines.
#include "show.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <fstream>

#include "tests/command/made_up_command.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

/// A machine with a multipath map whose partition has the distribution's name.
class OnMultipath : public MadeUpCommand {
protected:
    OnMultipath()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addPartition("sda", "sda1", "8:1");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
        m_made.addMap("dm-1", "254:1", "mpatha-part1", "part1-mpath-3600", {"dm-0"});
        m_made.set("dm-0", "size", "8");
        create_directories(m_made.dev("disk/by-id"));
        create_symlink("../../dm-0", m_made.dev("disk/by-id/x"));
    }

    Answered show(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "show");
        return answer(command::showPaths, arguments);
    }

    Answered explain(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "explain");
        return answer(command::explainPaths, arguments);
    }
};

using ShowOnMultipath = OnMultipath;
using ExplainOnMultipath = OnMultipath;

TEST_F(ShowOnMultipath, TellsOfNamesUnlessTheKernelIsAskedAbout)
{
    EXPECT_EQ(show({"-r", "/dev/sda"}).output, "NAME OWNER CLAIM PARTITION DISK PARTNUM\n"
                                               "/dev/sda native 2 no /dev/sda -\n");
    EXPECT_EQ(show({"-r", "-n", "-o", "OWNER,KIND,KNAME,MEMBEROF,SIZE,AGREES,EXISTS", "/dev/sda",
                    "/dev/mapper/mpatha", "/dev/mapper/mpathap1"})
                  .output,
              "native disk sda /dev/mapper/mpatha - no yes\n"
              "device-mapper multipath dm-0 - 4096 yes yes\n"
              "device-mapper - - - - - no\n");
}

TEST_F(ExplainOnMultipath, MarksOnATerminalWhereNameAndKernelDisagree)
{
    const std::vector<std::string> arguments{"explain", "/dev/sda", "/dev/mapper/mpatha"};
    const std::string screen = coloured(command::explainPaths, arguments);
    EXPECT_THAT(screen, HasSubstr("  \x1b[33magrees         \x1b[0mno: to the kernel"));
    EXPECT_THAT(screen, HasSubstr("  agrees         yes\n"));
}

TEST_F(ShowOnMultipath, HintsAtTheDeviceBehindAPathThatNobodyClaims)
{
    const Answered linked = show({"-r", "-n", "-o", "NAME", "/dev/disk/by-id/x", "dm-0", "254:0"});
    EXPECT_EQ(linked.output, "/dev/disk/by-id/x\ndm-0\n254:0\n");
    EXPECT_EQ(linked.errors,
              "dmpclaim: '/dev/disk/by-id/x' leads to /dev/mapper/mpatha, which a driver claims; "
              "to ask about that: dmpclaim show --resolve /dev/disk/by-id/x\n"
              "dmpclaim: 'dm-0' leads to /dev/mapper/mpatha, which a driver claims; "
              "to ask about that: dmpclaim show --resolve dm-0\n"
              "dmpclaim: '254:0' leads to /dev/mapper/mpatha, which a driver claims; "
              "to ask about that: dmpclaim show --resolve 254:0\n");
    EXPECT_EQ(linked.status, 32);
}

TEST_F(ShowOnMultipath, HintsAtNothingElse)
{
    m_made.addMap("dm-9", "254:9", "vg-root", "LVM-x", {"dm-1"});
    create_symlink("../../dm-9", m_made.dev("disk/by-id/lv"));
    EXPECT_EQ(show({"/dev/sda", "/dev/mapper/mpatha-part1", "/dev/disk/by-id/lv", "/dev/nothing",
                    "nothing", "9:9", "/dev/mapper/vg-root"})
                  .errors,
              "");
}

TEST_F(ShowOnMultipath, ResolvesLinksKernelNamesAndNumbers)
{
    const Answered resolved = show({"--resolve", "-r", "-n", "-o", "GIVEN,NAME,OWNER,KIND",
                                    "/dev/disk/by-id/x", "dm-1", "8:1", "/dev/mapper/mpatha"});
    EXPECT_EQ(resolved.output, "/dev/disk/by-id/x /dev/mapper/mpatha device-mapper multipath\n"
                               "dm-1 /dev/mapper/mpatha-part1 - multipath-partition\n"
                               "8:1 /dev/sda1 native partition\n"
                               "/dev/mapper/mpatha /dev/mapper/mpatha device-mapper multipath\n");
    EXPECT_EQ(resolved.errors, "");
    EXPECT_EQ(resolved.status, 64);
}

TEST_F(ShowOnMultipath, LeavesAPathAloneThatCannotBeResolved)
{
    EXPECT_EQ(show({"--resolve", "-r", "/dev/sdz"}).output,
              "GIVEN NAME OWNER CLAIM PARTITION DISK PARTNUM\n"
              "/dev/sdz /dev/sdz native 2 no /dev/sdz -\n");
}

TEST_F(ExplainOnMultipath, PutsTheVerdictFirstAndThenWhatTheKernelHas)
{
    EXPECT_THAT(
        explain({"/dev/sda"}).output,
        testing::StartsWith(
            "/dev/sda\n"
            "  owner          native (only claim)\n"
            "  partition      no\n"
            "  disk           /dev/sda\n"
            "  kernel         disk, sda (8:0)\n"
            "  agrees         no: to the kernel it is no partition, and owned by\n"
            "                 device-mapper\n"
            "  member of      /dev/mapper/mpatha\n"
            "  partitions     1 is /dev/sda1\n"
            "  native          2  claims it, a 16 would win        (prefix /dev/sd)\n"
            "  powerpath       0  does not claim it                (prefix /dev/emcpower)\n"
            "  device-mapper   0  does not claim it                (prefix /dev/mapper/)\n"));
}

TEST_F(ExplainOnMultipath, TellsWhichNodeIsThePartition)
{
    EXPECT_THAT(explain({"/dev/mapper/mpatha"}).output,
                HasSubstr("  kernel         multipath, dm-0 (254:0), 4096 bytes\n"
                          "  agrees         yes\n"
                          "  members        /dev/sda\n"
                          "  partitions     1 is /dev/mapper/mpatha-part1\n"));
    EXPECT_THAT(explain({"/dev/mapper/mpathap1"}).output,
                HasSubstr("  kernel         - (this machine has no such device)\n"
                          "  partitions     of /dev/mapper/mpatha: 1 is "
                          "/dev/mapper/mpatha-part1\n"));
    EXPECT_THAT(explain({"/dev/mapper/mpatha-part1"}).output,
                HasSubstr("  agrees         no: to the kernel it is partition 1 of "
                          "/dev/mapper/mpatha, and\n"
                          "                 owned by device-mapper\n"));
}

TEST_F(ExplainOnMultipath, SaysThatADiskHasNoPartitions)
{
    m_made.addDisk("sdb", "8:16", "2:0:0:1");
    EXPECT_THAT(explain({"/dev/sdb"}).output, HasSubstr("  partitions     none\n"));
    EXPECT_THAT(explain({"/dev/sdb1"}).output, HasSubstr("  partitions     of /dev/sdb: none\n"));
}

TEST_F(ExplainOnMultipath, TellsOfReadOnlyDisksAndNvmeSubsystems)
{
    const std::string subsystem = "class/nvme-subsystem/nvme-subsys0/";
    create_directories(m_made.sysfs(subsystem + "nvme0"));
    std::ofstream(m_made.sysfs(subsystem + "subsysnqn")) << "nqn.x\n";
    std::ofstream(m_made.sysfs(subsystem + "iopolicy")) << "numa\n";
    m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
    m_made.set("nvme0n1", "ro", "1");
    EXPECT_THAT(explain({"/dev/nvme0n1"}).output,
                HasSubstr("  kernel         nvme, nvme0n1 (259:0), read-only\n"
                          "  agrees         yes\n"
                          "  subsystem      nvme-subsys0, nqn.x, paths chosen by numa\n"));
}

TEST_F(ExplainOnMultipath, LeavesOutWhatTheKernelDoesNotTell)
{
    create_directories(m_made.sysfs("class/nvme-subsystem/nvme-subsys0/nvme0"));
    m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
    EXPECT_THAT(explain({"/dev/nvme0n1"}).output, HasSubstr("  subsystem      nvme-subsys0\n"));
    remove(m_made.dev("nvme0n1"));
    remove(m_made.sysfs("class/block/nvme0n1/dev"));
    EXPECT_THAT(explain({"/dev/nvme0n1"}).output, HasSubstr("  kernel         nvme, nvme0n1\n"));
}

TEST_F(ExplainOnMultipath, SaysThatNoneOfTheDriversOwnsTheDevice)
{
    m_made.addMap("dm-2", "254:2", "secret", "CRYPT-x");
    EXPECT_THAT(
        explain({"/dev/mapper/secret"}).output,
        HasSubstr("  agrees         no: to the kernel it is no partition, and owned by none "
                  "of\n                 these drivers\n"));
}

TEST_F(ExplainOnMultipath, SaysWhyThereAreNoFacts)
{
    m_made.addNode("sdx", "65:112");
    std::ofstream(m_made.dev("sdy")).put('\n');
    EXPECT_THAT(explain({"/dev/sdz"}).output,
                HasSubstr("kernel         - (this machine has no such device)\n"));
    EXPECT_THAT(
        explain({"/dev/sdx"}).output,
        HasSubstr("kernel         - (a node, but the kernel has no device with its number)\n"));
    EXPECT_THAT(explain({"/dev/sdy"}).output,
                HasSubstr("kernel         - (what is there is no block device)\n"));
    EXPECT_THAT(explain({"dm-0"}).output,
                HasSubstr("kernel         - (no path, but with --resolve it is "
                          "/dev/mapper/mpatha)\n"));
    remove_all(m_made.sysfs("class"));
    EXPECT_THAT(explain({"/dev/sda"}).output, HasSubstr("kernel         - (cannot read "));
}

TEST_F(ExplainOnMultipath, ResolvesAndWarnsLikeShow)
{
    const Answered resolved = explain({"--resolve", "/dev/disk/by-id/x"});
    EXPECT_THAT(resolved.output, StartsWith("/dev/mapper/mpatha\n"
                                            "  given as       /dev/disk/by-id/x\n"
                                            "  owner          device-mapper (only claim)\n"));
    EXPECT_THAT(explain({"--resolve", "/dev/sda"}).output, Not(HasSubstr("given as")));
    EXPECT_THAT(explain({"/dev/disk/by-id/x"}).output,
                HasSubstr("  warning        This leads to /dev/mapper/mpatha, which a driver "
                          "claims. Ask\n"
                          "                 about that path, or use --resolve.\n"));
}

TEST_F(ExplainOnMultipath, PrintsTheKernelsColumnsAndPartitionsAsJson)
{
    const auto answers =
        nlohmann::ordered_json::parse(explain({"-J", "/dev/mapper/mpatha", "/dev/sdz"}).output);
    const auto& map = answers["explanations"][0];
    EXPECT_EQ(map["kind"], "multipath");
    EXPECT_EQ(map["members"].dump(), R"(["/dev/sda"])");
    EXPECT_EQ(map["partitions"].dump(), R"([{"partnum":1,"path":"/dev/mapper/mpatha-part1"}])");
    EXPECT_EQ(answers["explanations"][1]["kind"], nullptr);
    EXPECT_EQ(answers["explanations"][1]["exists"], false);
    EXPECT_EQ(answers["explanations"][1]["partitions"].dump(), "[]");
}

} // namespace
