#include "active/active.h"

#include <string>

#include "active/dry_run.h"
#include "active/lookups.h"
#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/options.h"
#include "cli/usage_error.h"
#include "cli/wanted_paths.h"
#include "names/tool_name.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

namespace {

constexpr char footer[] =
    R"(A native path is looked up with the volume manager's tools under /usr/sbin; the
paths of other drivers are active themselves. An unchanged path may be the
active one, or nobody knew better: the tools are missing, or failed to the end.
The timeline (with -J, or -o +TIMELINE) tells: each command, how many seconds it
took and its result, and each wait. A result is the exit status, 0 for success;
1000+N: signal N ended the tool; 1100: it took more than 600 seconds; 1101: it
printed too much; 1102: its status was lost; null: it could not be run. Commands
are quoted for a shell (bash, zsh, ksh) but in JSON, which has them as they ran.

A native path that holds a space or a comma is refused: the tools would take it
for several arguments or disks. From standard input such a path, or one with a
NUL byte, has no active path but a warning; so has an active path that is not to
be used because it leaves /dev, or holds a blank or a control character.
Warnings also go to standard error, and the exit status is 1.

Without --refresh a disk that is not found is scanned and looked up again after
5 seconds, up to 4 times. While this goes on, a terminal on standard error shows
it, unless trace lines go there.

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the tools that run, and the
command with status 130, 143, 129 or 131.)";

/// Each job is a thread that runs one tool at a time; a small machine can run 64 of them.
constexpr unsigned int mostJobs = 64;

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

int showCommands(const Options& options, OutputStream& output)
{
    CDmpClaimManager manager;
    koze_pdk_4_4::CZeTraceLogHandle log = openTraceLog(options.trace);
    manager.registerTraceLog(log);
    AnswerWriter<PlannedCommand> writer(options, output, "commands", plannedColumns());
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next()) {
        for (const PlannedCommand& command : dryRun(manager, *path, options.isGiven("--refresh")))
            writer.write(command);
    }
    return writer.finish();
}

int lookUp(const Options& options, const LookupOptions& lookup, OutputStream& output)
{
    AnswerWriter<LookupResult> writer(options, output, "paths", lookupColumns());
    bool hasWarnings = false;
    const auto write = [&](const LookupResult& result) {
        writer.write(result);
        if (!result.warning)
            return;
        complain(result.name + ": " + *result.warning);
        hasWarnings = true;
    };
    lookUpActivePaths(options, lookup, {write, [&] { writer.flush(); }});
    const int status = writer.finish();
    return hasWarnings ? 1 : status;
}

int run(const Options& options, OutputStream& output)
{
    const LookupOptions lookup{options.isGiven("--refresh"), !options.isGiven("--no-progress"),
                               parseJobs(options.value("--jobs"))};
    rejectMisreadArguments(options);
    return options.isGiven("--dry-run") ? showCommands(options, output)
                                        : lookUp(options, lookup, output);
}

Headings headings(const Options& options)
{
    return options.isGiven("--dry-run")
               ? headingsFor(plannedColumns())
               : headingsFor(lookupColumns(), "NAME,OWNER,ACTIVE,CHANGED,TOOK");
}

} // namespace

Subcommand activeSubcommand()
{
    return {"active",
            "Print the paths that carry the I/O now",
            footer,
            Arguments::paths,
            {{"--refresh", nullptr,
              "Remove the disk's node from the volume manager and scan\n"
              "all disks before looking it up, up to 4 times, with 10\n"
              "seconds between. It removes the node each time!"},
             {"--dry-run", nullptr,
              "Run nothing; print the commands and when each would run\n"
              "(columns: NAME, OWNER, COMMAND, WHEN)"},
             {"-j,--jobs", " N", "Look up N paths at once, 1 to 64 (default 1)"},
             {"--no-progress", nullptr, "Show no progress"}},
            Form::table,
            headings,
            run};
}

} // namespace command
