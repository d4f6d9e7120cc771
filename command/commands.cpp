#include "commands.h"

#include <string>

#include "active/active.h"
#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/options.h"
#include "cli/wanted_paths.h"
#include "doctor/doctor.h"
#include "library.h"
#include "list.h"
#include "names/device_answer.h"
#include "show.h"

namespace command {

namespace {

constexpr char bareFooter[] =
    R"(Answers are printed bare, a line each: an empty line when nobody claims.
On a terminal, unprintable bytes become \xNN. With -o they come as a table.)";

int strip(const Options& options, OutputStream& output)
{
    Library library(options.trace);
    AnswerWriter<DeviceAnswer> writer(options, output, "disks", deviceColumns());
    const Machine machine;
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next())
        writer.write(deviceAnswer(library.manager, *path, DeviceLookup(machine)));
    return writer.finish();
}

int append(const Options& options, OutputStream& output)
{
    Library library(options.trace);
    AnswerWriter<PartitionAnswer> writer(options, output, "partitions", partitionColumns());
    writer.write(partitionAnswer(library.manager, options.paths.front(), options.partnum));
    return writer.finish();
}

int prefixes(const Options& options, OutputStream& output)
{
    Library library(options.trace);
    const std::vector<Module> modules = makeModules(library.log);
    AnswerWriter<PrefixAnswer> writer(options, output, "prefixes", prefixColumns());
    for (const std::string& prefix : library.manager.getDeviceClaimStrings())
        writer.write(prefixAnswer(modules, prefix));
    return writer.finish();
}

Headings diskHeadings(const Options& /*options*/)
{
    return {headingsOf(deviceColumns()), chosenColumns("DISK", {}, headingsOf(nameColumns())),
            headingsOf(nameColumns())};
}

Headings partitionHeadings(const Options& /*options*/)
{
    return headingsFor(partitionColumns(), "PATH");
}

Headings prefixHeadings(const Options& /*options*/)
{
    return headingsFor(prefixColumns(), "PREFIX");
}

} // namespace

const std::vector<Subcommand>& subcommands()
{
    static const std::vector<Subcommand> all{
        listSubcommand(),
        showSubcommand(),
        explainSubcommand(),
        {"append",
         "Print the path of a partition of a disk",
         bareFooter,
         Arguments::diskAndNumber,
         {},
         Form::bare,
         partitionHeadings,
         append},
        {"strip",
         "Print the paths of the disks that hold partitions",
         bareFooter,
         Arguments::paths,
         {},
         Form::bare,
         diskHeadings,
         strip},
        activeSubcommand(),
        doctorSubcommand(),
        {"prefixes",
         "Print the path prefixes that the drivers claim",
         bareFooter,
         Arguments::none,
         {},
         Form::bare,
         prefixHeadings,
         prefixes},
    };
    return all;
}

} // namespace command
