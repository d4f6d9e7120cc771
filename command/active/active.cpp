#include "active/active.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "active/dry_run.h"
#include "active/lookups.h"
#include "active/used_paths.h"
#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/options.h"
#include "cli/tally.h"
#include "cli/usage_error.h"
#include "cli/wanted_paths.h"
#include "kovm/retry_policy.h"
#include "names/tool_name.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

namespace {

constexpr char footerBegin[] =
    R"(A native path is looked up with the volume manager's tools under /usr/sbin, a
partition through its disk; the paths of other drivers are active themselves. A
lookup that fails gives the path itself. RESULT tells which it was, REASON why:

)";

constexpr char footerEnd[] =
    R"(
The timeline (with -J, or -o +TIMELINE) has each command, how many seconds it
took and its result, and each wait. A result is the exit status, 0 for success;
1000+N: signal N ended the tool; 1100: it took more than 600 seconds; 1101: it
printed too much; 1102: its status was lost; null: it could not be run. Commands
are quoted for a shell (bash, zsh, ksh) but in JSON, which has them as they ran.

Exit status:
   0  every path is confirmed or not asked about
  64  some paths are, some are not
  32  no path is
   1  there are warnings, or input or output failed
   2  the command line is wrong; nothing was done

A native path that holds a space or a comma is refused: the tools would take it
for several arguments or disks. From standard input such a path, or one with a
NUL byte, has no active path but a warning; so has an active path that is not to
be used because it leaves /dev, or holds a blank or a control character.
Warnings also go to standard error, and the exit status is 1.

Without --refresh a disk that is not found is scanned and looked up again after
5 seconds, up to 4 times. While this goes on, a terminal on standard error shows
it, unless trace lines go there. A --timeout counts for all paths together. An
attempt for which it leaves no time is not waited for; with --refresh it may
pass when the node is removed and not yet found again.

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the tools that run, prints
the rows of the paths that are answered, and ends the command with status 130,
143, 129 or 131.)";

std::string footer()
{
    constexpr std::size_t width = 15;
    std::string codes;
    for (const OutcomeCode& code : outcomeCodes()) {
        std::string word = code.mark.text;
        word.resize(width, ' ');
        codes += "  " + word + code.meaning + '\n';
    }
    return footerBegin + codes + footerEnd;
}

/// Each job is a thread that runs one tool at a time; a small machine can run 64 of them.
constexpr unsigned int mostJobs = 64;

/// As many as the library makes by itself.
constexpr unsigned int mostTries = kovm::waitingPolicy.attempts;

constexpr std::chrono::milliseconds shortestTimeout{1};
constexpr std::chrono::seconds longestTimeout{1'000'000}; // in milliseconds it fits poll(2)

unsigned int parseJobs(const std::optional<std::string>& text)
{
    const std::optional<unsigned int> jobs = text ? parseNumber(*text) : 1;
    if (!jobs || *jobs < 1 || *jobs > mostJobs)
        throw UsageError("'" + *text + "' is not a number of jobs (1 to 64)", "active");
    return *jobs;
}

/// Checks arguments only. Names from standard input are read later, and get warnings instead.
void rejectMisreadArguments(const Options& options)
{
    CDmpClaimManager manager; // without the user's trace log
    for (const std::string& path : options.paths) {
        CDmpDeviceClaimBase* owner = nullptr;
        manager.getClaimModule(owner, path);
        const bool asksTools = owner != nullptr && driverOf(owner)->asksTools;
        const char* reason = asksTools ? whyNotAsked(path) : nullptr;
        if (reason != nullptr)
            throw UsageError("'" + path + "' cannot be looked up: " + reason, "active");
    }
}

/// Nothing when the library's number is to be kept.
std::optional<int> parseTries(const Options& options)
{
    const std::optional<std::string> text = options.value("--tries");
    if (options.isGiven("--once")) {
        if (text)
            throw UsageError("--once and --tries exclude each other", "active");
        return 1;
    }
    if (!text)
        return std::nullopt;
    const std::optional<unsigned int> tries = parseNumber(*text);
    if (!tries || *tries < 1 || *tries > mostTries)
        throw UsageError("'" + *text + "' is not a number of attempts (1 to 4)", "active");
    return static_cast<int>(*tries);
}

TimeLimit parseTimeout(const std::optional<std::string>& text)
{
    if (!text)
        return std::nullopt;
    const std::optional<std::chrono::milliseconds> timeout = parseSeconds(*text);
    if (!timeout || *timeout < shortestTimeout || *timeout > longestTimeout)
        throw UsageError("'" + *text + "' is not a time limit (0.001 to 1000000 seconds)",
                         "active");
    return std::chrono::steady_clock::now() + *timeout;
}

LookupRules parseRules(const Options& options)
{
    LookupRules rules;
    rules.limit = parseTimeout(options.value("--timeout")); // first: the time counts from here
    rules.refresh = options.isGiven("--refresh");
    rules.asGiven = options.isGiven("--as-given");
    rules.tries = parseTries(options);
    return rules;
}

int showCommands(const Options& options, const LookupRules& rules, OutputStream& output)
{
    CDmpClaimManager manager;
    koze_pdk_4_4::CZeTraceLogHandle log = openTraceLog(options.trace);
    manager.registerTraceLog(log);
    AnswerWriter<PlannedCommand> writer(options, output, "commands", plannedColumns());
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next()) {
        for (const PlannedCommand& command : dryRun(manager, *path, rules))
            writer.write(command);
    }
    return writer.finish();
}

bool isChosen(const Options& options, const char* column)
{
    return std::any_of(options.columns.begin(), options.columns.end(),
                       [&](const Heading& heading) { return heading.name == column; });
}

int lookUp(const Options& options, const LookupOptions& lookup, OutputStream& output)
{
    AnswerWriter<LookupResult> writer(options, output, "paths", lookupColumns());
    Tally tally;
    bool hasWarnings = false;
    const Machine machine;
    const DeviceMapper mapper;
    const bool withUsed = isChosen(options, "USED");
    const auto write = [&](LookupResult result) {
        if (withUsed)
            result.used = usedPaths(machine, result.name, std::cref(mapper));
        writer.write(result);
        tally.count(result.outcome.isGood());
        if (!result.warning)
            return;
        complain(result.name + ": " + *result.warning);
        hasWarnings = true;
    };
    const auto finish = [&](bool isInterrupted) {
        if (isInterrupted)
            writer.endEarly();
        else
            writer.finish();
    };
    const bool hasReadAll =
        lookUpActivePaths(options, lookup, {write, [&] { writer.flush(); }, finish});
    if (!hasReadAll)
        complain("the time limit passed before standard input ended; later paths have no rows");
    return hasWarnings || !hasReadAll ? 1 : tally.exitStatus();
}

int run(const Options& options, OutputStream& output)
{
    const LookupOptions lookup{parseRules(options), !options.isGiven("--no-progress"),
                               parseJobs(options.value("--jobs"))};
    rejectMisreadArguments(options);
    return options.isGiven("--dry-run") ? showCommands(options, lookup.rules, output)
                                        : lookUp(options, lookup, output);
}

Headings headings(const Options& options)
{
    return options.isGiven("--dry-run")
               ? headingsFor(plannedColumns())
               : headingsFor(lookupColumns(), "NAME,OWNER,ACTIVE,CHANGED,TOOK,DISK,RESULT,REASON");
}

} // namespace

Subcommand activeSubcommand()
{
    return {"active",
            "Print the paths that carry the I/O now",
            footer(),
            Arguments::paths,
            {{"--refresh", nullptr,
              "Remove the disk's node from the volume manager and scan "
              "all disks before looking it up, up to 4 times, with 10 "
              "seconds between. It removes the node each time!"},
             {"--as-given", nullptr,
              "Ask about a partition's own name, which the volume "
              "manager does not know, not about its disk"},
             {"--tries", " N",
              "Look a disk up N times at most, 1 to 4, and do not "
              "pause after the last attempt"},
             {"--once", nullptr, "The same as --tries 1"},
             {"--timeout", " SECONDS",
              "End the tools after so many seconds, 0.001 to 1000000, "
              "and show the paths without an answer as timed-out"},
             {"--dry-run", nullptr,
              "Run nothing; print the commands and when each would run "
              "(columns: NAME, OWNER, COMMAND, WHEN)"},
             {"-j,--jobs", " N", "Look up N paths at once, 1 to 64 (default 1)"},
             {"--no-progress", nullptr, "Show no progress"}},
            Form::table,
            headings,
            run,
            {{"active /dev/sdc", "the path that carries the disk's I/O now"},
             {"active --dry-run --refresh /dev/sdc", "what would run to find it"}}};
}

} // namespace command
