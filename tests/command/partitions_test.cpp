// `dmpclaim append` and `dmpclaim strip` on made-up machines.
#include "partitions.h"

#include <gmock/gmock.h>

#include "tests/command/made_up_command.h"

using testing::HasSubstr;

namespace {

/// A machine with the names that the library, the distribution and other tools give to partitions.
class Partitions : public MadeUpCommand {
protected:
    Partitions()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addPartition("sda", "sda1", "8:1");
        m_made.addPartition("sda", "sda11", "8:11");
        m_made.add("pci0000:00/virtio0/block", "vda", "259:0");
        m_made.addPartition("vda", "vda1", "259:1");
        addMap(0, "mpatha");
        addPartitionMap(1, "mpathap1", 1);
        addPartitionMap(2, "mpathap10", 10);
        addMap(3, "mpathb");
        addPartitionMap(4, "mpathb-part1", 1);
        addMap(5, "mpathc");
        addPartitionMap(6, "mpathc1", 1);
    }

    Answered append(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "append");
        return answer(command::appendNumber, arguments);
    }

    Answered strip(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "strip");
        return answer(command::stripNumbers, arguments);
    }

private:
    void addMap(int number, const std::string& name)
    {
        m_disk = "dm-" + std::to_string(number);
        m_made.addMap(m_disk, "254:" + std::to_string(number), name, "mpath-" + name);
    }

    void addPartitionMap(int number, const std::string& name, int partition)
    {
        m_made.addMap("dm-" + std::to_string(number), "254:" + std::to_string(number), name,
                      "part" + std::to_string(partition) + "-mpath-" + name, {m_disk});
    }

    std::string m_disk;
};

using AppendOnAMachine = Partitions;
using StripOnAMachine = Partitions;

TEST_F(AppendOnAMachine, ByNameIsSilentWhenTheNameIsThatOfThePartition)
{
    for (const auto& [disk, name] :
         {std::pair("/dev/sda", "/dev/sda1"), {"/dev/mapper/mpatha", "/dev/mapper/mpathap1"}}) {
        const Answered answered = append({disk, "1"});
        EXPECT_EQ(answered.output, std::string(name) + '\n');
        EXPECT_EQ(answered.errors, "");
        EXPECT_EQ(answered.status, 0);
    }
}

TEST_F(AppendOnAMachine, ByNameWarnsOfANodeThatDoesNotExist)
{
    const Answered other = append({"/dev/mapper/mpathb", "1"});
    EXPECT_EQ(other.output, "/dev/mapper/mpathbp1\n");
    EXPECT_EQ(other.errors,
              "dmpclaim: '/dev/mapper/mpathbp1' does not exist on this machine; partition 1 of "
              "'/dev/mapper/mpathb' is '/dev/mapper/mpathb-part1', which --existing prints\n");
    EXPECT_EQ(other.status, 0);
    EXPECT_EQ(append({"/dev/sda", "3"}).errors,
              "dmpclaim: '/dev/sda3' does not exist on this machine\n");
}

TEST_F(AppendOnAMachine, ByNameWarnsOfANameThatDoesNotComeBack)
{
    EXPECT_EQ(append({"/dev/sda1", "1"}).errors,
              "dmpclaim: the library reads '/dev/sda11' as partition 11 of '/dev/sda', not as "
              "partition 1 of '/dev/sda1'\n");
    EXPECT_EQ(append({"/dev/mapper/mpatha", "10"}).errors,
              "dmpclaim: the library reads '/dev/mapper/mpathap10' as a whole disk, not as "
              "partition 10 of '/dev/mapper/mpatha'\n");
    EXPECT_THAT(append({"/dev/mapper/xp1p", "1"}).errors, HasSubstr("does not exist"));
}

TEST_F(AppendOnAMachine, OfADiskThatNobodyClaimsIsEmptyWithoutAWarning)
{
    const Answered answered = append({"/dev/vda", "1"});
    EXPECT_EQ(answered.output, "\n");
    EXPECT_EQ(answered.errors, "");
    EXPECT_EQ(answered.status, 32);
}

TEST_F(AppendOnAMachine, ExistingIsTheKernelsNodeWhateverItsName)
{
    for (const auto& [disk, node] : {std::pair("/dev/sda", "/dev/sda1"),
                                     {"/dev/vda", "/dev/vda1"},
                                     {"/dev/mapper/mpatha", "/dev/mapper/mpathap1"},
                                     {"/dev/mapper/mpathb", "/dev/mapper/mpathb-part1"},
                                     {"/dev/mapper/mpathc", "/dev/mapper/mpathc1"},
                                     {"dm-5", "/dev/mapper/mpathc1"},
                                     {"8:0", "/dev/sda1"}}) {
        const Answered answered = append({"--existing", disk, "1"});
        EXPECT_EQ(answered.output, std::string(node) + '\n') << disk;
        EXPECT_EQ(answered.status, 0) << disk;
    }
    EXPECT_EQ(append({"--existing", "/dev/mapper/mpatha", "10"}).output, "/dev/mapper/mpathap10\n");
}

TEST_F(AppendOnAMachine, ExistingSaysWhatTheNamingRuleWouldHaveSaid)
{
    EXPECT_EQ(append({"--existing", "/dev/mapper/mpathb", "1"}).errors,
              "dmpclaim: the naming rule would say '/dev/mapper/mpathbp1' for "
              "'/dev/mapper/mpathb-part1'\n");
    EXPECT_EQ(append({"--existing", "/dev/mapper/mpatha", "1"}).errors, "");
    EXPECT_EQ(append({"--existing", "/dev/vda", "1"}).errors, "");
}

TEST_F(AppendOnAMachine, ExistingIsEmptyWhenTheKernelHasNone)
{
    remove(m_made.dev("sda1"));
    const Answered gone = append({"--existing", "/dev/sda", "1"});
    EXPECT_EQ(gone.output, "\n");
    EXPECT_EQ(gone.errors, "dmpclaim: partition 1 of '/dev/sda' has no node at '/dev/sda1'\n");
    EXPECT_EQ(gone.status, 64);
    const Answered none = append({"--existing", "/dev/sda", "7"});
    EXPECT_EQ(none.output, "\n");
    EXPECT_EQ(none.errors, "dmpclaim: the kernel has no partition 7 of '/dev/sda'\n");
    EXPECT_EQ(none.status, 64);
    EXPECT_EQ(append({"--existing", "/dev/sdz", "1"}).status, 64);
}

TEST_F(AppendOnAMachine, TheColumnIsCalledName)
{
    EXPECT_EQ(append({"-r", "-o", "name,disk,partnum", "/dev/sda", "1"}).output,
              "NAME DISK PARTNUM\n/dev/sda1 /dev/sda 1\n");
}

TEST_F(StripOnAMachine, ByNameIsSilentWhenTheDiskIsThereAndLeadsBack)
{
    const Answered answered = strip({"/dev/sda1", "/dev/mapper/mpathap1", "/dev/sda"});
    EXPECT_EQ(answered.output, "/dev/sda\n/dev/mapper/mpatha\n/dev/sda\n");
    EXPECT_EQ(answered.errors, "");
}

TEST_F(StripOnAMachine, ByNameWarnsOfADiskThatDoesNotExistOrDoesNotLeadBack)
{
    EXPECT_EQ(strip({"/dev/sdx1"}).errors, "dmpclaim: '/dev/sdx' does not exist on this machine\n");
    EXPECT_EQ(strip({"/dev/sda007"}).errors,
              "dmpclaim: partition 7 of '/dev/sda' would be '/dev/sda7', not '/dev/sda007'\n");
    EXPECT_EQ(strip({"/dev/vda1"}).errors, "");
}

TEST_F(StripOnAMachine, ExistingIsTheKernelsDiskAndNumber)
{
    const Answered answered =
        strip({"--existing", "-r", "-n", "-o", "DISK,PARTNUM,PARTITION", "/dev/mapper/mpathap10",
               "/dev/mapper/mpathb-part1", "/dev/vda1", "/dev/sda"});
    EXPECT_EQ(answered.output, "/dev/mapper/mpatha 10 yes\n"
                               "/dev/mapper/mpathb 1 yes\n"
                               "/dev/vda 1 yes\n"
                               "/dev/sda - no\n");
    EXPECT_EQ(answered.errors, "dmpclaim: by its name '/dev/mapper/mpathap10' would be on "
                               "'/dev/mapper/mpathap10'\n");
    EXPECT_EQ(answered.status, 0);
}

TEST_F(StripOnAMachine, ExistingIsEmptyForWhatIsNoDevice)
{
    const Answered answered = strip({"--existing", "/dev/sdx1", "/dev/sda1"});
    EXPECT_EQ(answered.output, "\n/dev/sda\n");
    EXPECT_EQ(answered.errors, "dmpclaim: '/dev/sdx1' is no block device of this machine\n");
    EXPECT_EQ(answered.status, 64);
}

} // namespace
