#include "doctor/doctor.h"

#include <ctime>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "cli/options.h"
#include "cli/terminal_line.h"
#include "cli/usage_error.h"
#include "cli/wanted_paths.h"
#include "doctor/check_line.h"
#include "doctor/doctor_options.h"
#include "doctor/examination.h"
#include "doctor/findings.h"
#include "doctor/metrics.h"
#include "doctor/replace_file.h"
#include "doctor/report.h"
#include "interrupt/interrupt.h"

namespace command {

namespace {

constexpr char footer[] =
    R"(Looks at the volume manager's tools and asks them about every native disk, or
the PATHs; asking changes nothing. Then it looks for disks that have lost paths,
and holds the names in /dev against the kernel's devices. A tool that takes more
than 30 seconds, or prints too much, is ended and not asked again.

Every finding has a code, a severity, a device and a sentence: ok, note (good to
know), warning (an answer may be wrong, or redundancy is lost) or error (an
answer is wrong or missing, or a disk has no path). "To do" says what to do, and
"Type" is a command for a shell (bash, zsh, ksh) that does it, or shows more.
With PATHs only these are examined; a partition's disk is, too.

JSON holds besides what somebody who helps from afar needs: versions, modules
(in the order in which they are asked), names, maps (of the kernel's
device-mapper), disks with their paths, commands (what the tools answered; for
the status see 'dmpclaim active --help'), the trace of the tools' runs, with
--trace of everything, and whether the examination was cut short. --json-lines
has a line for each finding, as it is found.

--check tells paths that can be used (paths) from others (failed). --metrics is
for the textfile collector of node exporter: share/doc/dmpclaim/monitoring.md.

Exit status:
   0  nothing is wrong; with --metrics: they are written
  64  there are warnings
  32  there are errors, or not everything was examined

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the tools that run, and the
command with status 130, 143, 129 or 131, once it has reported what it knows.

-J, --json-lines, --color, --trace and the statuses 1 and 2: see 'dmpclaim --help'.)";

/// When the first progress is shown: most runs have ended before.
constexpr std::chrono::seconds beforeProgress{1};

/// Shows on a terminal how far the examination is.
class Progress {
public:
    /// Shows nothing where trace lines go to standard error.
    explicit Progress(const TraceOptions& trace)
        : m_line(trace.level && !trace.file ? -1 : STDERR_FILENO)
    {}

    void show(const std::string& text)
    {
        if (std::chrono::steady_clock::now() - m_begin >= beforeProgress)
            m_line.show(text);
    }

    TerminalLine& line() { return m_line; }

private:
    TerminalLine m_line;
    const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

/// An early end is an error, also when --only or --ignore leaves its finding out.
int exitStatus(const FindingCounts& counts, StopReason end)
{
    if (countOf(counts, Severity::error) > 0 || end != StopReason::none)
        return 32;
    return countOf(counts, Severity::warning) > 0 ? 64 : 0;
}

/// Reads standard input to its end. Called before there is an Interrupt, so that a signal ends the
/// process at once while it waits for input.
std::vector<std::string> givenPaths(const Options& options)
{
    std::vector<std::string> paths;
    PathSource source = wantedPaths(options, [] {});
    while (std::optional<std::string> path = source.next())
        paths.push_back(std::move(*path));
    return paths;
}

TimeLimit limitOf(const DoctorOptions& options)
{
    return options.timeout ? TimeLimit(std::chrono::steady_clock::now() + *options.timeout)
                           : TimeLimit();
}

/// Writes what was found in the form that is wanted, but for the metrics and the report. Returns
/// the exit status.
int writeResult(const DoctorOptions& options, const Report& report, const Findings& findings,
                OutputStream& output)
{
    const bool isWhole = report.end == StopReason::none;
    int status = exitStatus(findings.counts(), report.end);
    if (options.form == DoctorForm::check) {
        const CheckResult result = checkResult(report, findings.kept());
        output.write(result.line);
        status = result.status;
    } else if (options.form == DoctorForm::text && (!options.isQuiet || !isWhole)) {
        output.write(isWhole ? summary(findings.counts()) : "Not everything was examined.\n");
    }
    output.flush();
    return status;
}

int writeMetrics(const DoctorOptions& options, const Report& report, const Findings& findings,
                 OutputStream& output)
{
    const std::string text = metricsText(report, findings.kept(), std::time(nullptr));
    if (options.outputFile) {
        replaceFile(*options.outputFile, text);
        return 0;
    }
    output.write(text);
    output.flush();
    return 0;
}

Findings::Use useOf(DoctorForm form)
{
    if (form == DoctorForm::text)
        return Findings::Use::text;
    return form == DoctorForm::jsonLines ? Findings::Use::line : Findings::Use::keep;
}

int diagnose(const Options& options, const DoctorOptions& own, OutputStream& output)
{
    const std::vector<Module> modules = makeModules({});
    const auto stop = std::make_shared<StopRequest>(); // threads may outlive this call
    Progress progress(options.trace);
    Findings findings(own.filter, useOf(own.form), output);
    std::optional<ReportWriter> document;
    ExaminationOrder order{givenPaths(options), own, options.trace,
                           [&](const std::string& text) { progress.show(text); }};
    if (own.form == DoctorForm::json) {
        document.emplace(output, modules);
        order.takeName = [&](const Explanation& name) {
            progress.line().erase();
            document->addName(name);
        };
    }
    Interrupt interrupt(
        *stop, [&] { progress.line().close(); }, limitOf(own));
    const Report report = examine(order, modules, stop, [&](const Finding& finding) {
        progress.line().erase();
        findings.take(finding);
    });
    progress.line().erase();
    if (own.form == DoctorForm::metrics) {
        interrupt.finish(); // does not return after a signal, so that the old metrics stay
        return writeMetrics(own, report, findings, output);
    }
    if (document)
        document->finish(report, findings.kept());
    const int status = writeResult(own, report, findings, output);
    interrupt.finish();
    return status;
}

/// Reports an error as a monitoring plugin does: UNKNOWN on its line, and status 3.
int check(const Options& options, OutputStream& output)
{
    try {
        return diagnose(options, doctorOptions(options), output);
    } catch (const std::exception& error) {
        const CheckResult result = unknownResult(error.what());
        output.write(result.line);
        output.flush();
        return result.status;
    }
}

int run(const Options& options, OutputStream& output)
{
    if (options.isGiven("--check"))
        return check(options, output);
    const DoctorOptions own = doctorOptions(options);
    if (own.form != DoctorForm::codes)
        return diagnose(options, own, output);
    output.write(codeList());
    output.flush();
    return 0;
}

} // namespace

Subcommand doctorSubcommand()
{
    return {
        "doctor",
        "Tell what is wrong on this machine, and what to do",
        std::string(footer) + "\n\nCodes of findings:\n" + codeHelp(),
        Arguments::optionalPaths,
        doctorOptionDeclarations(),
        Form::text,
        nullptr,
        run,
        {{"doctor --quiet --expect-paths 4", "what is wrong, and disks with fewer than 4 paths"},
         {"doctor -J /dev/sdc >case.json", "what to send with a question about a disk"}}};
}

} // namespace command
