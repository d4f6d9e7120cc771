#include "doctor/doctor_options.h"

#include <initializer_list>
#include <limits>

#include "cli/usage_error.h"

namespace command {

namespace {

/// Each job is a thread that runs one tool at a time; a small machine can run 64 of them.
constexpr unsigned int mostJobs = 64;
constexpr unsigned int mostSeconds = 24 * 60 * 60;

/// Monitoring programs end a plugin after some more seconds.
constexpr std::chrono::seconds checkTimeout{10};

/// The number that is given for an option; `usual` when none is.
unsigned int number(const Options& options, const char* option, unsigned int most,
                    unsigned int usual)
{
    const std::optional<std::string> text = options.value(option);
    if (!text)
        return usual;
    const std::optional<unsigned int> value = parseNumber(*text);
    if (!value || *value < 1 || *value > most)
        throw UsageError(std::string(option) + " takes a number from 1 to " + std::to_string(most) +
                             ", not '" + *text + "'",
                         "doctor");
    return *value;
}

/// Throws when two options are given that ask for different outputs.
DoctorForm formOf(const Options& options)
{
    struct Choice {
        const char* option;
        DoctorForm form;
        bool isGiven;
    };
    const Choice choices[] = {
        {"--json", DoctorForm::json, options.form == Form::json},
        {"--json-lines", DoctorForm::jsonLines, options.form == Form::jsonLines},
        {"--check", DoctorForm::check, options.isGiven("--check")},
        {"--metrics", DoctorForm::metrics, options.isGiven("--metrics")},
        {"--codes", DoctorForm::codes, options.isGiven("--codes")}};
    const Choice* chosen = nullptr;
    for (const Choice& choice : choices) {
        if (!choice.isGiven)
            continue;
        if (chosen != nullptr)
            throw UsageError(std::string(choice.option) + " does not go with " + chosen->option,
                             "doctor");
        chosen = &choice;
    }
    return chosen == nullptr ? DoctorForm::text : chosen->form;
}

std::optional<std::chrono::seconds> timeoutOf(const Options& options, DoctorForm form)
{
    if (options.value("--timeout"))
        return std::chrono::seconds(number(options, "--timeout", mostSeconds, 0));
    return form == DoctorForm::check ? std::optional(checkTimeout) : std::nullopt;
}

FindingFilter filterOf(const Options& options)
{
    FindingFilter filter;
    if (const std::optional<std::string> codes = options.value("--only"))
        filter.setOnly(*codes);
    if (const std::optional<std::string> codes = options.value("--ignore"))
        filter.ignore(*codes);
    if (options.isGiven("--quiet"))
        filter.setQuiet();
    return filter;
}

} // namespace

std::vector<OptionDeclaration> doctorOptionDeclarations()
{
    return {{"--check", nullptr,
             "Print one line as monitoring plugins do, and end with "
             "0 (OK), 1 (WARNING), 2 (CRITICAL) or 3 (UNKNOWN)"},
            {"--metrics", nullptr, "Print metrics in Prometheus' text format"},
            {"--output-file", " FILE",
             "Replace FILE by the metrics, at once: readers find the "
             "old metrics or the new ones"},
            {"--codes", nullptr, "List the codes of findings"},
            {"--only", " CODES", "Report findings of these codes only, with commas between"},
            {"--ignore", " CODES", "Report no findings of these codes"},
            {"-q,--quiet", nullptr, "Report warnings and errors only"},
            {"--expect-paths", " N", "Warn of multipathed disks with fewer than N paths"},
            {"--timeout", " SECONDS",
             "End the tools after so long, and report what is known "
             "(with --check: 10 unless given)"},
            {"-j,--jobs", " N", "Ask about N disks at once, 1 to 64 (default 1)"}};
}

DoctorOptions doctorOptions(const Options& options)
{
    DoctorOptions result;
    result.form = formOf(options);
    result.filter = filterOf(options);
    result.isQuiet = options.isGiven("--quiet");
    result.jobs = number(options, "--jobs", mostJobs, 1);
    result.expectedPaths =
        number(options, "--expect-paths", std::numeric_limits<unsigned int>::max(), 0);
    result.timeout = timeoutOf(options, result.form);
    result.outputFile = options.value("--output-file");
    if (result.outputFile && result.form != DoctorForm::metrics)
        throw UsageError("--output-file is for --metrics", "doctor");
    return result;
}

} // namespace command
