#ifndef TESTS_COMMAND_SCENARIO_ANSWERS_H
#define TESTS_COMMAND_SCENARIO_ANSWERS_H

#include <string>
#include <vector>

/// What the command makes of a scenario of the simulator.
struct ScenarioAnswer {
    using Texts = std::vector<std::string>;

    const char* scenario;

    // `active /dev/sdc`. None where a tool hangs: the tests of interrupts and of the time limit
    // cover that.
    const char* active;
    const char* result;
    std::string reason; // a part of it
    Texts steps;        // see ActiveCommand::outline

    Texts codes; // of what `doctor` finds on a machine with sdb and sdc
};

/// The steps of four failed attempts; `result` is that of each lookup.
ScenarioAnswer::Texts fourFailures(const std::string& result, const std::string& rescan = "0");

namespace scenarios {

/// One for each scenario.
extern const std::vector<ScenarioAnswer> answers;

} // namespace scenarios

#endif
