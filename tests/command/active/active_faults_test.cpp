#include "active_command.h"

#include <chrono>
#include <set>

namespace {

using testing::ElementsAre;

constexpr char active[] = "/dev/sdb"; // of /dev/sdc, in every scenario that ends well
constexpr char unchanged[] = "/dev/sdc";

constexpr char confirmed[] = "confirmed";
constexpr char notFound[] = "not-found";
constexpr char namesTheOther[] = "the volume manager names /dev/sdb for node arr0_17";
constexpr char namesItself[] = "the volume manager names /dev/sdc for node arr0_17";

using Steps = std::vector<std::string>;

const Steps found{"getdmpnode 0", "getsubpaths 0"};

struct Case {
    const char* scenario;
    const char* active;
    const char* result;
    std::string reason; // a part of it
    Steps steps;
};

class ActiveFaults : public ActiveCommand, public testing::WithParamInterface<Case> {
public:
    using ActiveCommand::fourFailures;
};

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
    EXPECT_EQ(sleeps(), Steps(static_cast<std::size_t>(waits), "5"));
    EXPECT_EQ(calls(), callsIn(path["timeline"]));
}

// Failures repeat the library's answers to the same tables: a node without a name, or under half of
// its name, has no paths.
const Steps nodeWithoutPaths{"getdmpnode 0", "getsubpaths 1"};

const Case cases[] = {
    {"healthy", active, confirmed, namesTheOther, found},
    {"failed-over", unchanged, confirmed, namesItself, found},
    {"any-order", "/dev/sde", confirmed, "names /dev/sde for", found},
    {"no-active-path", unchanged, confirmed, namesItself, found},
    {"no-path-left", unchanged, "no-path", "no path of node arr0_17 can be used", found},
    {"only-primary-left", unchanged, "no-path",
     "no path of node arr0_17 is enabled; /dev/sdc is the first primary one", found},
    {"unknown-disk", active, confirmed, namesTheOther, found},
    {"failing-tool", unchanged, "tool-failed",
     "kodmpadm getdmpnode ended with status 3, 'ERROR the volume manager is not running' "
     "(4 attempts)",
     ActiveFaults::fourFailures("3", "6")},
    {"stale-repaired-by-waiting",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0",
      "getsubpaths 0"}},
    {"stale-repaired-by-refreshing", unchanged, notFound,
     "the volume manager does not know node arr0_9, which it named for sdc: kodmpadm getsubpaths "
     "ended with status 1, '",
     nodeWithoutPaths},
    {"stale-paths", active, confirmed, namesTheOther, found},
    {"replay",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-blank-lines", active, confirmed, namesTheOther, found},
    {"fault-crlf", active, confirmed, namesTheOther, found},
    {"fault-cut-short", unchanged, notFound, "the volume manager does not know node arr0_1, which",
     nodeWithoutPaths},
    {"fault-delay", active, confirmed, namesTheOther, found},
    {"fault-exit-status",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 3", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-flood",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1101", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"}},
    {"fault-late-signal", unchanged, "tool-failed",
     "kodmpadm getdmpnode was ended by signal 9 (4 attempts)", ActiveFaults::fourFailures("1009")},
    {"fault-many-spaces", active, confirmed, namesTheOther, found},
    {"fault-no-header", unchanged, "no-table", "no header in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths},
    {"fault-no-rule", unchanged, notFound,
     "the volume manager does not know sdc: no node in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths},
    {"fault-noise", active, confirmed, namesTheOther, found},
    {"fault-note", unchanged, "no-table",
     "a line before the header in the answer of kodmpadm getdmpnode (4 attempts)",
     ActiveFaults::fourFailures("0")},
    {"fault-signal", active, confirmed, namesTheOther, found},
    {"fault-tabs", active, confirmed, namesTheOther, found},
};

INSTANTIATE_TEST_SUITE_P(Scenarios, ActiveFaults, testing::ValuesIn(cases),
                         [](const testing::TestParamInfo<Case>& test) {
                             std::string name = test.param.scenario;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ActiveScenarios, AreAllWalkedThrough)
{
    // The tests of interrupts and of the time limit cover the scenarios whose tools hang.
    std::set<std::string> walked{"hanging-tool", "fault-hang-after-output"};
    for (const Case& walk : cases)
        walked.insert(walk.scenario);
    std::set<std::string> scenarios;
    for (const auto& file : std::filesystem::directory_iterator(SIMULATOR_SCENARIOS))
        scenarios.insert(file.path().stem());
    EXPECT_EQ(walked, scenarios);
}

} // namespace
