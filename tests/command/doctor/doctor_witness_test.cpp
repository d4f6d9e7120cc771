// Disks that the volume manager may not hold: others tell whether its tools work.
#include <algorithm>

#include "doctor_command.h"

namespace {

using testing::StartsWith;

class DoctorWitness : public Doctor {
protected:
    /// How often the tools were asked about the disk, or about any.
    long questions(const std::string& disk = "") const
    {
        const std::vector<std::string> calls = log();
        return std::count_if(calls.begin(), calls.end(), [&](const std::string& call) {
            return call.find("\"nodename=" + disk) != std::string::npos;
        });
    }
};

TEST_F(DoctorWitness, AsksAboutEightOtherDisksAtMost)
{
    for (char letter = 'd'; letter <= 'o'; ++letter)
        machine.addDeviceWithNode(std::string("sd") + letter);
    const Result ended = run({"-q", "/dev/sdf"});
    EXPECT_THAT(ended.output, StartsWith("error    tool-failed /usr/sbin/kodmpadm getdmpnode: "));
    EXPECT_EQ(questions(), 1 + 8);
    EXPECT_EQ(questions("sdf"), 1);
}

TEST_F(DoctorWitness, AsksAboutNoOtherWhenTheDiskIsHeld)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    EXPECT_EQ(run({"/dev/sdb"}).status, 0);
    EXPECT_EQ(questions(), 1);
}

} // namespace
