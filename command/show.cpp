#include "show.h"

#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/wanted_paths.h"
#include "library.h"
#include "names/explanation.h"
#include "names/explanation_writer.h"
#include "names/kernel_text.h"
#include "text/shell_word.h"
#include "whole_output.h"

namespace command {

namespace {

constexpr char showFooter[] =
    R"(The first six columns are told from the name alone; the others, which -o
chooses, with -J too, are what the kernel has there. PARTNUM is '-' for a whole
disk, and for a device-mapper partition, whose number the library does not read
back.)";
constexpr char explainFooter[] =
    "-J, --json-lines, --color, --trace and the exit status: see 'dmpclaim --help'.";

OptionDeclaration resolveOption()
{
    return {"--resolve", nullptr,
            "Ask about the device's own path: PATH may be a link, a kernel name such as dm-0, or "
            "a number such as 254:0"};
}

/// A path that the user asks about, and what it was before --resolve.
struct AskedPath {
    std::string path;
    std::string given; // empty when nothing was resolved
    DeviceLookup kernel;
};

AskedPath askedPath(const Options& options, const Machine& machine, const std::string& path)
{
    if (!options.isGiven("--resolve"))
        return {path, "", DeviceLookup(machine)};
    const BlockDevice* device = machine.resolve(path);
    if (device == nullptr)
        return {path, path, DeviceLookup(machine)};
    return {device->path(), path, DeviceLookup(machine, *device)};
}

void hintAtTarget(CDmpClaimManager& manager, const DeviceAnswer& answer)
{
    if (const BlockDevice* target = claimedTarget(manager, answer))
        complain("'" + answer.name + "' leads to " + target->path() +
                 ", which a driver claims; to ask about that: dmpclaim show --resolve " +
                 shellWord(answer.name));
}

/// The usual columns are those that the name alone tells. The kernel's are chosen with -o: each
/// costs reads of sysfs.
Headings showHeadings(const Options& options)
{
    const std::vector<Heading> all = headingsOf(deviceColumns());
    std::vector<Heading> usual = headingsOf(nameColumns());
    if (options.isGiven("--resolve"))
        usual.insert(usual.begin(), chosenColumns("GIVEN", {}, all).front());
    return {all, usual, usual};
}

int runShow(const Options& options, OutputStream& output)
{
    return showPaths(options, output, Machine());
}

int runExplain(const Options& options, OutputStream& output)
{
    return explainPaths(options, output, Machine());
}

} // namespace

int showPaths(const Options& options, OutputStream& output, const Machine& machine)
{
    const WholeOutput whole(options, output);
    Library library(options.trace);
    AnswerWriter<DeviceAnswer> writer(options, output, "devices", deviceColumns());
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next()) {
        AskedPath asked = askedPath(options, machine, *path);
        DeviceAnswer answer = deviceAnswer(library.manager, asked.path, asked.kernel);
        answer.given = std::move(asked.given);
        hintAtTarget(library.manager, answer);
        writer.write(answer);
    }
    return writer.finish();
}

int explainPaths(const Options& options, OutputStream& output, const Machine& machine)
{
    const WholeOutput whole(options, output);
    Library library(options.trace);
    const std::vector<Module> modules = makeModules(library.log);
    ExplanationWriter writer(options.form, output);
    Tally tally;
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next()) {
        AskedPath asked = askedPath(options, machine, *path);
        Explanation answer = explanation(library.manager, modules, asked.path, asked.kernel);
        answer.device.given = std::move(asked.given);
        tally.count(answer.device.owner != nullptr);
        writer.write(answer);
    }
    writer.finish();
    output.flush();
    return tally.exitStatus();
}

Subcommand showSubcommand()
{
    return {"show",
            "Show who owns paths, and what they name",
            showFooter,
            Arguments::paths,
            {resolveOption()},
            Form::table,
            showHeadings,
            runShow,
            {{"show /dev/sdc2 /dev/mapper/mpathb", "who owns these paths"},
             {"show --resolve -o +KIND,AGREES dm-0", "the device behind a kernel name"}}};
}

Subcommand explainSubcommand()
{
    return {"explain",
            "Tell why, and warn of ambiguous names",
            explainFooter,
            Arguments::paths,
            {resolveOption()},
            Form::text,
            nullptr,
            runExplain,
            {{"explain /dev/mapper/mpathbp2", "why this is a partition, and whether it is one"},
             {"explain --resolve 8:16", "the same for the device with this number"}}};
}

} // namespace command
