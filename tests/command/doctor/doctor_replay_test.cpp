// What doctor records of each scenario, replayed.
#include "doctor_command.h"
#include "tests/command/scenario_answers.h"

namespace {

class DoctorReplay : public Doctor {
protected:
    Json record() const { return Json::parse(run({"-J"}).output); }
};

/// Not those whose tools hang, which take doctor half a minute, nor a flood, which is never
/// recorded as a whole.
TEST_F(DoctorReplay, GivesTheFindingsOfEachScenarioAgain)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    std::size_t left = 0;
    for (const ScenarioAnswer& answer : scenarios::answers) {
        const std::string name = answer.scenario;
        if (answer.active == nullptr || name == "fault-flood") {
            ++left;
            continue;
        }
        useScenario(name);
        const Json recorded = record();
        write(Json{{"replay", recorded["commands"]}});
        const Json again = record();
        EXPECT_EQ(again["findings"], recorded["findings"]) << name;
        EXPECT_EQ(again["commands"], recorded["commands"]) << name;
    }
    EXPECT_EQ(left, 3U);
}

} // namespace
