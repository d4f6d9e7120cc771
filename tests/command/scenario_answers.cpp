#include "tests/command/scenario_answers.h"

namespace {

constexpr char active[] = "/dev/sdb"; // of /dev/sdc, in every scenario that ends well
constexpr char unchanged[] = "/dev/sdc";
constexpr char confirmed[] = "confirmed";
constexpr char notFound[] = "not-found";
constexpr char namesTheOther[] = "the volume manager names /dev/sdb for node arr0_17";
constexpr char namesItself[] = "the volume manager names /dev/sdc for node arr0_17";
const ScenarioAnswer::Texts found{"getdmpnode 0", "getsubpaths 0"};
const ScenarioAnswer::Texts limit{"time-limit"};

// Failures repeat the library's answers to the same tables: a node without a name, or under half of
// its name, has no paths.
const ScenarioAnswer::Texts nodeWithoutPaths{"getdmpnode 0", "getsubpaths 1"};

} // namespace

ScenarioAnswer::Texts fourFailures(const std::string& result, const std::string& rescan)
{
    ScenarioAnswer::Texts steps;
    for (int attempt = 0; attempt < 4; ++attempt)
        steps.insert(steps.end(), {"getdmpnode " + result, "wait", "scandisks " + rescan});
    return steps;
}

const std::vector<ScenarioAnswer> scenarios::answers{
    {"healthy", active, confirmed, namesTheOther, found, {}},
    {"failed-over", unchanged, confirmed, namesItself, found, {"one-path-left"}},
    {"any-order",
     "/dev/sde",
     confirmed,
     "names /dev/sde for",
     found,
     {"active-path-missing", "active-path-missing", "path-lost"}},
    {"no-active-path", unchanged, confirmed, namesItself, found, {"path-lost"}},
    {"no-path-left",
     unchanged,
     "no-path",
     "no path of node arr0_17 can be used",
     found,
     {"no-path"}},
    {"only-primary-left",
     unchanged,
     "no-path",
     "no path of node arr0_17 is enabled; /dev/sdc is the first primary one",
     found,
     {"no-path"}},
    {"unknown-disk", active, confirmed, namesTheOther, found, {}},
    {"failing-tool",
     unchanged,
     "tool-failed",
     "kodmpadm getdmpnode ended with status 3, 'ERROR the volume manager is not running' "
     "(4 attempts)",
     fourFailures("3", "6"),
     {"tool-failed"}},
    {"stale-repaired-by-waiting",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0",
      "getsubpaths 0"},
     {"tool-failed"}},
    {"stale-repaired-by-refreshing",
     unchanged,
     notFound,
     "the volume manager does not know node arr0_9, which it named for sdc: kodmpadm "
     "getsubpaths ended with status 1, '",
     nodeWithoutPaths,
     {"tool-failed"}},
    {"stale-paths", active, confirmed, namesTheOther, found, {}},
    {"replay",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"},
     {"tool-failed", "tool-failed"}},
    {"fault-blank-lines", active, confirmed, namesTheOther, found, {}},
    {"fault-crlf", active, confirmed, namesTheOther, found, {}},
    {"fault-cut-short",
     unchanged,
     notFound,
     "the volume manager does not know node arr0_1, which",
     nodeWithoutPaths,
     {"tool-failed"}},
    {"fault-delay", active, confirmed, namesTheOther, found, {}},
    {"fault-exit-status",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 3", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"},
     {"tool-failed"}},
    {"fault-flood",
     active,
     confirmed,
     namesTheOther,
     {"getdmpnode 1101", "wait", "scandisks 0", "getdmpnode 0", "getsubpaths 0"},
     {"tool-floods"}},
    {"fault-late-signal",
     unchanged,
     "tool-failed",
     "kodmpadm getdmpnode was ended by signal 9 (4 attempts)",
     fourFailures("1009"),
     {"tool-failed"}},
    {"fault-many-spaces", active, confirmed, namesTheOther, found, {}},
    {"fault-no-header",
     unchanged,
     "no-table",
     "no header in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths,
     {"tool-unreadable"}},
    {"fault-no-rule",
     unchanged,
     notFound,
     "the volume manager does not know sdc: no node in the answer of kodmpadm getdmpnode",
     nodeWithoutPaths,
     {"no-disk-held"}},
    {"fault-noise", active, confirmed, namesTheOther, found, {}},
    {"fault-note",
     unchanged,
     "no-table",
     "a line before the header in the answer of kodmpadm getdmpnode (4 attempts)",
     fourFailures("0"),
     {"tool-unreadable"}},
    {"fault-signal", active, confirmed, namesTheOther, found, {"tool-failed"}},
    {"fault-tabs", active, confirmed, namesTheOther, found, {}},
    {"fault-hang-after-output", nullptr, nullptr, "", {}, limit},
    {"hanging-tool", nullptr, nullptr, "", {}, limit},
};
