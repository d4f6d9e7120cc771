// A machine whose disk the kernel and the volume manager both multipath.
#include "doctor_command.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DoctorSameDisk : public Doctor {
protected:
    /// The paths of the scenarios' node are those of a map.
    void SetUp() override
    {
        Doctor::SetUp();
        machine.addDisk("sdb", "8:0", "2:0:0:0");
        machine.addDisk("sdc", "8:16", "3:0:0:0");
        machine.addMapWithNode("mpatha", "mpath-3600", {"sdb", "sdc"});
    }
};

TEST_F(DoctorSameDisk, IsOneDiskWithTwoPaths)
{
    EXPECT_THAT(
        run({"--check"}).output,
        StartsWith("DMPCLAIM OK - 1 disk, 2 paths | disks=1;;;; paths=2;;;; failed=0;;;; "));
    EXPECT_THAT(splitLines(run().output),
                Contains("ok       paths-usable /dev/mapper/mpatha: 2 paths (node arr0_17), sdb "
                         "carries"));
    const Json disks = report()["disks"];
    ASSERT_EQ(disks.size(), 1U);
    EXPECT_EQ(disks[0]["node"], "arr0_17");
}

TEST_F(DoctorSameDisk, HasLostAPathOnce)
{
    useScenario("failed-over");
    machine.set("sdb", "device/state", "offline");
    EXPECT_THAT(run({"--check"}).output,
                StartsWith("DMPCLAIM WARNING - 1 of 1 disk has one path left: mpatha (sdb offline) "
                           "| disks=1;;;; paths=1;;;; failed=1;;;; errors=0;;;; warnings=1;;;; "));
    EXPECT_THAT(splitLines(run({"--metrics"}).output),
                AllOf(Contains("dmpclaim_disks{driver=\"device-mapper\"} 1"),
                      Contains("dmpclaim_disks{driver=\"kodmp\"} 0"),
                      Contains("dmpclaim_findings{code=\"one-path-left\",severity=\"warning\"} 1"),
                      Not(Contains(HasSubstr("device=\"arr0_17\"")))));
}

TEST_F(DoctorSameDisk, IsTheNodeWhereOnlyAPathIsAskedAbout)
{
    const Json disks = report({"/dev/sdb"})["disks"];
    ASSERT_EQ(disks.size(), 1U);
    EXPECT_EQ(disks[0]["device"], "arr0_17");
    EXPECT_EQ(disks[0]["node"], nullptr);
}

} // namespace
