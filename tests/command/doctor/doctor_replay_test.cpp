// What doctor records of each scenario, replayed: doctor finds the same again, and active ends with
// the same result.
#include <map>

#include "doctor_command.h"

namespace {

class DoctorReplay : public Doctor {
protected:
    void SetUp() override
    {
        Doctor::SetUp();
        machine.addDeviceWithNode("sdb");
        machine.addDeviceWithNode("sdc");
    }

    Json record() const { return Json::parse(run({"-J"}).output); }

    /// The result of one attempt of `active` for /dev/sdc.
    std::string result(const std::string& timeout) const
    {
        const Result ended =
            Process(inNamespace({"env", "ASAN_OPTIONS=" + sanitizerOptions, DMPCLAIM_COMMAND,
                                 "active", "-J", "--once", "--timeout", timeout, "/dev/sdc"}))
                .finish();
        const Json document = Json::parse(ended.output);
        return document["paths"][0]["result"];
    }
};

/// The results of one attempt.
const std::map<std::string, std::string>& results()
{
    static const std::map<std::string, std::string> results{
        {"healthy", "confirmed"},
        {"any-order", "confirmed"},
        {"failed-over", "confirmed"},
        {"failing-tool", "tool-failed"},
        {"fault-blank-lines", "confirmed"},
        {"fault-crlf", "confirmed"},
        {"fault-cut-short", "not-found"},
        {"fault-delay", "confirmed"},
        {"fault-exit-status", "tool-failed"},
        {"fault-flood", "tool-failed"},
        {"fault-hang-after-output", "timed-out"},
        {"fault-late-signal", "tool-failed"},
        {"fault-many-spaces", "confirmed"},
        {"fault-no-header", "no-table"},
        {"fault-no-rule", "not-found"},
        {"fault-noise", "confirmed"},
        {"fault-note", "no-table"},
        {"fault-signal", "confirmed"},
        {"fault-tabs", "confirmed"},
        {"hanging-tool", "timed-out"},
        {"no-active-path", "confirmed"},
        {"no-path-left", "no-path"},
        {"only-primary-left", "no-path"},
        {"replay", "not-found"},
        {"stale-paths", "confirmed"},
        {"stale-repaired-by-refreshing", "not-found"},
        {"stale-repaired-by-waiting", "not-found"},
        {"unknown-disk", "confirmed"}};
    return results;
}

TEST_F(DoctorReplay, EachScenarioHasItsResultOfOneAttempt)
{
    for (const auto& file : std::filesystem::directory_iterator(scenarios())) {
        const std::string name = file.path().stem();
        ASSERT_EQ(results().count(name), 1U) << name;
        useScenario(name);
        const std::string expected = results().at(name);
        EXPECT_EQ(result(expected == "timed-out" ? "0.5" : "60"), expected) << name;
    }
}

/// Not those whose tools hang, which take doctor half a minute, nor a flood, which is never
/// recorded as a whole.
TEST_F(DoctorReplay, GivesTheFindingsOfEachScenarioAgain)
{
    std::size_t replayed = 0;
    for (const auto& [name, result] : results()) {
        if (result == "timed-out" || name == "fault-flood")
            continue;
        useScenario(name);
        const Json recorded = record();
        write(Json{{"replay", recorded["commands"]}});
        const Json again = record();
        EXPECT_EQ(again["findings"], recorded["findings"]) << name;
        EXPECT_EQ(again["commands"], recorded["commands"]) << name;
        ++replayed;
    }
    EXPECT_EQ(replayed, results().size() - 3);
}

} // namespace
