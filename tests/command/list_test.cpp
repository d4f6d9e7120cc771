// `dmpclaim list` on made-up machines.
#include "list.h"

#include <gmock/gmock.h>

#include "cli/usage_error.h"
#include "names/drivers.h"
#include "tests/command/made_up_command.h"

using namespace command;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

/// A machine with a disk of each kind that a name may hide.
class List : public MadeUpCommand {
protected:
    List()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addDisk("sdb", "8:16", "3:0:0:0");
        m_made.addDisk("sdc", "8:32", "4:0:0:0");
        m_made.addPartition("sdc", "sdc1", "8:33");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        m_made.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
        m_made.addMap("dm-2", "254:2", "mpatha-part2", "part2-mpath-3600", {"dm-0"});
        m_made.addMap("dm-3", "254:3", "cryptswap1", "CRYPT-PLAIN-cryptswap1", {"sdc1"});
        m_made.addVirtual("loop0", "7:0");
        m_made.add("pci0000:00/virtio0/block", "vda", "253:0");
        for (const char* disk : {"sda", "sdb", "sdc", "dm-0", "vda"})
            m_made.set(disk, "size", "2097152");
    }

    Answered list(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "list");
        return answer(listDevices, arguments);
    }
};

TEST_F(List, HasARowForEachDeviceWithItsOwnerByNameAndItsKindByTheKernel)
{
    const Answered listed = list({});
    EXPECT_EQ(
        listed.output,
        "NAME                     KNAME KIND                      SIZE OWNER         AGREES DISK"
        "                 PARTNUM MEMBEROF\n"
        "/dev/mapper/cryptswap1   dm-3  crypt                        - device-mapper no     "
        "/dev/mapper/cryptswa       - -\n"
        "/dev/mapper/mpatha       dm-0  multipath           1073741824 device-mapper yes    "
        "/dev/mapper/mpatha         - -\n"
        "/dev/mapper/mpatha-part2 dm-2  multipath-partition          - -             no     -"
        "                          - -\n"
        "/dev/mapper/mpathap1     dm-1  multipath-partition          - device-mapper yes    "
        "/dev/mapper/mpatha         - -\n"
        "/dev/sda                 sda   disk                1073741824 native        no     "
        "/dev/sda                   - /dev/mapper/mpatha\n"
        "/dev/sdb                 sdb   disk                1073741824 native        no     "
        "/dev/sdb                   - /dev/mapper/mpatha\n"
        "/dev/sdc                 sdc   disk                1073741824 native        yes    "
        "/dev/sdc                   - -\n"
        "/dev/sdc1                sdc1  partition                    - native        yes    "
        "/dev/sdc                   1 /dev/mapper/cryptswap1\n"
        "/dev/vda                 vda   virtio              1073741824 -             yes    -"
        "                          - -\n");
    EXPECT_EQ(listed.errors, "");
    EXPECT_EQ(listed.status, 0);
}

TEST_F(List, WithAllLeavesNoDeviceOut)
{
    EXPECT_EQ(list({"-r", "-n", "-o", "NAME", "--all", "--kind", "loop"}).output, "/dev/loop0\n");
    EXPECT_EQ(list({"-r", "-n", "-o", "NAME", "--kind", "loop"}).output, "");
}

TEST_F(List, CanBeFilteredByOwnerAndKind)
{
    EXPECT_EQ(list({"-r", "-n", "-o", "NAME", "--owner", "none"}).output,
              "/dev/mapper/mpatha-part2\n/dev/vda\n");
    EXPECT_EQ(list({"-r", "-n", "-o", "NAME", "--kind", "multipath,crypt"}).output,
              "/dev/mapper/cryptswap1\n/dev/mapper/mpatha\n");
    EXPECT_EQ(list({"-r", "-n", "-o", "NAME", "--kind", "disk", "--owner", "device-mapper"}).status,
              0);
}

TEST_F(List, KnowsOwnersAndKindsByTheirWordsOnly)
{
    EXPECT_THAT(
        [&] {
            list({"--owner", "native,scsi"});
        },
        testing::ThrowsMessage<UsageError>(
            testing::AllOf(testing::StartsWith("--owner knows no 'scsi'; there are native, "),
                           testing::EndsWith(", none"))));
    EXPECT_THAT(
        [&] {
            list({"--kind", ""});
        },
        testing::ThrowsMessage<UsageError>(
            HasSubstr("--kind knows no ''; there are disk, partition, multipath, ")));
}

TEST_F(List, NamesEveryOwnerAndKindInItsHelp)
{
    const command::Subcommand list = listSubcommand();
    const std::string owners = list.options[1].help;
    for (const Driver& driver : drivers())
        EXPECT_THAT(owners, HasSubstr(driver.name));
    std::string kinds = list.options[2].help;
    std::replace(kinds.begin(), kinds.end(), '\n', ' ');
    for (const std::string& kind : kindNames())
        EXPECT_THAT(kinds, ContainsRegex("[ :]" + kind + "(,|$)"));
}

TEST_F(List, LeavesThePathsOfNvmeMultipathingOutUnlessAllAreWanted)
{
    m_made.add("pci0000:00/nvme/nvme0", "nvme0c0n1", "259:1");
    EXPECT_THAT(list({"-r", "-n", "-o", "NAME"}).output, Not(HasSubstr("nvme")));
    EXPECT_THAT(list({"-r", "-n", "-o", "NAME", "--all"}).output, HasSubstr("/dev/nvme0c0n1\n"));
}

TEST_F(List, MayBeOfGivenDevicesOnly)
{
    create_directories(m_made.dev("disk/by-id"));
    create_symlink("../../dm-0", m_made.dev("disk/by-id/x"));
    const Answered listed =
        list({"-r", "-n", "-o", "NAME", "8:16", "/dev/disk/by-id/x", "dm-3", "/dev/loop0"});
    EXPECT_EQ(listed.output, "/dev/sdb\n/dev/mapper/mpatha\n/dev/mapper/cryptswap1\n/dev/loop0\n");
    EXPECT_EQ(listed.errors, "");
    EXPECT_EQ(listed.status, 0);
}

TEST_F(List, SaysWhichGivenPathsAreNoDevices)
{
    const Answered some = list({"-r", "-n", "-o", "NAME", "/dev/sdx", "/dev/sda"});
    EXPECT_EQ(some.output, "/dev/sda\n");
    EXPECT_EQ(some.errors, "dmpclaim: '/dev/sdx' is no block device of this machine\n");
    EXPECT_EQ(some.status, 64);
    EXPECT_EQ(list({"/dev/sdx"}).status, 32);
}

TEST_F(List, ShowsEveryFactThatTheKernelHas)
{
    m_made.set("sda", "device/wwid", "naa.3330");
    m_made.set("sdc", "device/wwid", "naa.601");
    remove(m_made.dev("sdc1"));
    EXPECT_EQ(list({"-r", "-o", "MAJMIN,PARENT,MEMBERS,WWID,HCTL,STATE,LINKS,EXISTS,GIVEN", "sda",
                    "dm-0", "8:32", "/dev/sdc1"})
                  .output,
              "MAJMIN PARENT MEMBERS WWID HCTL STATE LINKS EXISTS GIVEN\n"
              "8:0 - - 3600 2:0:0:0 running - yes sda\n"
              "254:0 - /dev/sda,/dev/sdb 3600 - - - yes dm-0\n"
              "8:32 - - 3601 4:0:0:0 running - yes 8:32\n"
              "8:33 /dev/sdc - - - - - no /dev/sdc1\n");
}

TEST_F(List, MarksOnATerminalWhereNameAndKernelDisagree)
{
    EXPECT_EQ(coloured(listDevices, {"list", "-n", "-o", "NAME,AGREES", "sda", "dm-0"}),
              "/dev/sda           \x1b[33mno\x1b[0m\n/dev/mapper/mpatha yes\n");
}

TEST_F(List, OfAMachineWithoutDevicesIsEmpty)
{
    const MadeUpMachine empty;
    const Options options = std::get<Options>(parseOptions({"list", "-J"}, subcommands()));
    CapturedOutput output;
    EXPECT_EQ(listDevices(options, output.stream(), Machine(empty.roots())), 0);
    EXPECT_THAT(output.text(), HasSubstr("\"devices\": []"));
}

TEST_F(List, CannotBeMadeWithoutSysfs)
{
    const Options options = std::get<Options>(parseOptions({"list"}, subcommands()));
    CapturedOutput output;
    EXPECT_THAT(
        [&] {
            listDevices(options, output.stream(), Machine({"/nonexistent/sys", "/dev"}));
        },
        testing::ThrowsMessage<std::system_error>(
            "cannot read /nonexistent/sys/class/block: No such file or directory"));
}

} // namespace
