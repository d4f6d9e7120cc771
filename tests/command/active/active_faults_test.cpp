#include "active_command.h"

#include <set>

#include "tests/command/scenario_answers.h"

namespace {

class ActiveFaults : public ActiveCommand, public testing::WithParamInterface<ScenarioAnswer> {};

TEST_P(ActiveFaults, GiveTheBestPathOrThePathItself)
{
    useScenario(GetParam().scenario);
    const Json path = answer({"/dev/sdc"});
    EXPECT_EQ(path["name"], "/dev/sdc");
    EXPECT_EQ(path["owner"], "native");
    EXPECT_EQ(path["active"], GetParam().active);
    EXPECT_EQ(path["changed"], GetParam().active != std::string("/dev/sdc"));
    EXPECT_EQ(path["result"], GetParam().result);
    EXPECT_THAT(path["reason"].get<std::string>(), testing::HasSubstr(GetParam().reason));
    EXPECT_EQ(path["disk"], "/dev/sdc");
    EXPECT_EQ(outline(path["timeline"]), GetParam().steps);
    const auto waits = std::count(GetParam().steps.begin(), GetParam().steps.end(), "wait");
    EXPECT_EQ(sleeps(), ScenarioAnswer::Texts(static_cast<std::size_t>(waits), "5"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
}

/// The scenarios in which every tool ends.
std::vector<ScenarioAnswer> answersOfTools()
{
    std::vector<ScenarioAnswer> answers;
    for (const ScenarioAnswer& answer : scenarios::answers) {
        if (answer.active != nullptr)
            answers.push_back(answer);
    }
    return answers;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ActiveFaults, testing::ValuesIn(answersOfTools()),
                         [](const testing::TestParamInfo<ScenarioAnswer>& test) {
                             std::string name = test.param.scenario;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ActiveScenarios, AreAllWalkedThrough)
{
    std::set<std::string> walked;
    for (const ScenarioAnswer& answer : scenarios::answers)
        EXPECT_TRUE(walked.insert(answer.scenario).second) << answer.scenario;
    std::set<std::string> scenarios;
    for (const auto& file : std::filesystem::directory_iterator(SIMULATOR_SCENARIOS))
        scenarios.insert(file.path().stem());
    EXPECT_EQ(walked, scenarios);
}

} // namespace
