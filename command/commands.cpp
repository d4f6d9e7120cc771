#include "commands.h"

#include <string>

#include "active/active.h"
#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/options.h"
#include "doctor/doctor.h"
#include "library.h"
#include "list.h"
#include "names/device_answer.h"
#include "partitions.h"
#include "paths/paths.h"
#include "show.h"

namespace command {

namespace {

constexpr char bareFooter[] =
    R"(Answers are printed bare, a line each: an empty line when nobody claims.
On a terminal, unprintable bytes become \xNN. With -o they come as a table.)";

int prefixes(const Options& options, OutputStream& output)
{
    Library library(options.trace);
    const std::vector<Module> modules = makeModules(library.log);
    AnswerWriter<PrefixAnswer> writer(options, output, "prefixes", prefixColumns());
    for (const std::string& prefix : library.manager.getDeviceClaimStrings())
        writer.write(prefixAnswer(modules, prefix));
    return writer.finish();
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
        appendSubcommand(),
        stripSubcommand(),
        activeSubcommand(),
        doctorSubcommand(),
        pathsSubcommand(),
        {"prefixes",
         "Print the path prefixes that the drivers claim",
         bareFooter,
         Arguments::none,
         {},
         Form::bare,
         prefixHeadings,
         prefixes,
         {{"prefixes", "what the drivers claim"},
          {"prefixes -o +OWNER", "and which driver claims it"}}},
    };
    return all;
}

} // namespace command
