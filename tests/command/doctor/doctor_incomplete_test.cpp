// What doctor prints, and ends with, when it could not examine everything.
#include "doctor_command.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class DoctorIncomplete : public Doctor {
protected:
    void SetUp() override
    {
        Doctor::SetUp();
        useScenario("hanging-tool");
        machine.addDeviceWithNode("sdb");
    }
};

TEST_F(DoctorIncomplete, IsToldAlsoWhenItsFindingIsNotWanted)
{
    for (const char* choice : {"--only=no-path", "--ignore=time-limit"}) {
        const Result ended = run({"-q", choice, "--timeout", "1"});
        EXPECT_EQ(ended.status, 32) << choice;
        EXPECT_EQ(ended.output, "Not everything was examined.\n") << choice;
    }
    const Result check = run({"--check", "--only=no-path", "--timeout", "1"});
    EXPECT_EQ(check.status, 3);
    EXPECT_THAT(check.output, StartsWith("DMPCLAIM UNKNOWN - not everything was examined | "));
}

TEST_F(DoctorIncomplete, LeavesTheJsonWhole)
{
    const Result ended = run({"-J", "--timeout", "1"});
    EXPECT_EQ(ended.status, 32);
    const Json document = Json::parse(ended.output);
    EXPECT_EQ(document["interrupted"], true);
    EXPECT_EQ(document["names"].size(), 1U);
    const Result lines = run({"--json-lines", "--timeout", "1"});
    EXPECT_EQ(lines.status, 32);
    EXPECT_THAT(splitLines(lines.output), Contains(HasSubstr("\"code\":\"time-limit\"")));
}

} // namespace
