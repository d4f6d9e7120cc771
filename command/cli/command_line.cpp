#include "cli/command_line.h"

#include <algorithm>
#include <memory>
#include <string>

#include "cli/options.h"
#include "text/wrapped.h"

namespace command {

namespace {

constexpr char globalFooter[] =
    R"(Who owns a path, and what it names, is told from the path alone, which need not
exist; 'active' and 'doctor' ask the volume manager's tools as well. Options may
stand before and behind the subcommand. JSON is {"schema": 1, ARRAY: [...]};
bytes of names that are not UTF-8 become U+FFFD there.

Exit status:
   0  every path is claimed, or none was asked about
  32  no path is claimed
  64  some paths are claimed, some are not
   1  input or output failed; for 'active' also: there are warnings
   2  the command line is wrong; nothing was done
For 'active' a path counts as claimed when it is confirmed or not asked about.)";

constexpr char pathHelp[] = "Device paths; '-' reads them from standard input, one a\n"
                            "line, or NUL-separated if a NUL is met before a line end";
constexpr char tableFooter[] =
    "-J, -o, -n, -r, --trace and the exit status: see 'dmpclaim --help'.";

/// Help shows an option's value as it is declared, such as " N" or "[=LEVEL]".
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() { column_width(24); }

    std::string make_option_name(const CLI::Option* option, bool isPositional) const override
    {
        const std::string name = Formatter::make_option_name(option, isPositional);
        return name.substr(0, name.find('{'));
    }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_option_text();
    }
};

void addFlag(CLI::App& app, const char* names, const char* help)
{
    app.add_flag(names)->description(help)->disable_flag_override();
}

void addGlobalOptions(CLI::App& app)
{
    addFlag(app, "-J,--json", "Print JSON");
    app.add_option("-o,--output")
        ->option_text(" LIST")
        ->description("Columns to show, separated by commas; with '+' in\n"
                      "front, besides the usual ones")
        ->take_last();
    addFlag(app, "-n,--noheadings", "Print no headings");
    addFlag(app, "-r,--raw",
            "Do not align columns; blanks and unprintable bytes in\n"
            "names become \\xNN");
    app.add_flag("--trace{6}")
        ->option_text("[=LEVEL]")
        ->description("Print the library's trace lines to standard error, up\n"
                      "to a level from 1 to 6, which is all of them")
        ->take_last();
    app.add_option("--trace-file")
        ->option_text(" FILE")
        ->description("Append trace lines to a file instead")
        ->take_last();
}

void addNull(CLI::App& app)
{
    addFlag(app, "-0,--null", "Paths on standard input are NUL-separated");
}

CLI::Option* addPaths(CLI::App& app)
{
    CLI::Option* paths = app.add_option("PATH")
                             ->option_text(" ...")
                             ->description(pathHelp)
                             ->expected(1, CLI::detail::expected_max_vector_size)
                             ->allow_extra_args();
    addNull(app);
    return paths;
}

void addArguments(CLI::App& app, Arguments arguments)
{
    switch (arguments) {
    case Arguments::none:
        break;
    case Arguments::paths:
        addPaths(app)->required();
        break;
    case Arguments::optionalPaths:
        addPaths(app);
        break;
    case Arguments::diskAndNumber:
        app.add_option("DISK")
            ->description("Path of a whole disk; '-' reads such paths from standard\n"
                          "input, as PATH does elsewhere")
            ->required();
        app.add_option("N")->description("Partition number, 0 to 4294967295")->required();
        addNull(app);
        break;
    }
}

void addOwnOption(CLI::App& app, const OwnOption& option)
{
    if (option.value == nullptr)
        addFlag(app, option.names, option.help);
    else
        app.add_option(option.names)
            ->option_text(option.value)
            ->description(option.help)
            ->take_last();
}

/// What each column tells, a paragraph each.
std::string columnHelp(const std::vector<Heading>& headings)
{
    constexpr std::size_t indent = 12;
    std::string text = "Columns:\n";
    for (const Heading& heading : headings) {
        std::string name = "  " + std::string(heading.name);
        name.resize(std::max(indent, name.size() + 1), ' ');
        text += name + wrapped(heading.help, indent) + '\n';
    }
    return text;
}

/// What follows the options in a subcommand's help.
std::string footerOf(const Subcommand& subcommand)
{
    if (subcommand.headings == nullptr)
        return subcommand.footer;
    return subcommand.footer + "\n\n" + columnHelp(subcommand.headings({}).all) + '\n' +
           tableFooter;
}

void addSubcommand(CLI::App& app, const Subcommand& subcommand)
{
    CLI::App* added = app.add_subcommand(subcommand.name, subcommand.help);
    added->footer(footerOf(subcommand));
    addArguments(*added, subcommand.arguments);
    for (const OwnOption& option : subcommand.options)
        addOwnOption(*added, option);
}

} // namespace

void declareCommandLine(CLI::App& app, const std::vector<Subcommand>& subcommands)
{
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Print help and exit");
    app.set_version_flag("-V,--version", "dmpclaim " DMPCLAIM_VERSION,
                         "Print the version and exit");
    app.footer(globalFooter);
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(app);
    for (const Subcommand& subcommand : subcommands)
        addSubcommand(app, subcommand);
}

} // namespace command
