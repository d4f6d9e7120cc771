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
stand before and behind the subcommand. JSON is {"schema": 1, ARRAY: [...]}, with
"interrupted": true when an interrupt cut it short; its schemas are installed
under share/dmpclaim. Bytes of names that are not UTF-8 become U+FFFD there, and
a member with "_raw" behind its name holds what -r prints. Tables go out 256
rows at a time; later rows only widen the columns.

In the words of -r, '-' stands for no value, and '""' for an empty text. In the
pairs of -P both are empty.

Trace levels:
  1  an exception around a command
  2  that, warnings, and commands that failed
  3  that, what is done, and its results
  4  as 3
  5  as 3
  6  that, entering and leaving functions, and each step

Exit status:
   0  every path is claimed, or none was asked about
  32  no path is claimed
  64  some paths are claimed, some are not
   1  input or output failed; for 'active' also: there are warnings
   2  the command line is wrong; nothing was done
For 'active' a path counts as claimed when it is confirmed or not asked about.)";

const std::vector<Example> globalExamples{
    {"show /dev/sdc2 /dev/mapper/mpathb", "who owns these paths, and what they name"},
    {"list -J", "this machine's block devices for a program"}};

constexpr char pathHelp[] = "Device paths; '-' reads them from standard input, one a line, or "
                            "NUL-separated if a NUL is met before a line end";
constexpr char otherOptions[] =
    "-J, --json-lines, -o, -O, -n, -r, -P, -z, --color, --trace and the exit status: see "
    "'dmpclaim --help'.";

/// The names of an option without the values that they stand for:  --trace{6} becomes --trace
std::string withoutBraces(std::string names)
{
    for (std::size_t begin = names.find('{'); begin != std::string::npos; begin = names.find('{'))
        names.erase(begin, names.find('}', begin) - begin + 1);
    return names;
}

/// Help shows an option's value as it is declared, such as " N" or "[=LEVEL]", and breaks lines at
/// the terminal's width.
class HelpFormatter : public CLI::Formatter {
public:
    explicit HelpFormatter(std::size_t width) : m_width(width) { column_width(24); }

    std::string make_option(const CLI::Option* option, bool isPositional) const override
    {
        const std::string name = withoutBraces(make_option_name(option, isPositional));
        return item(name + option->get_option_text(), option->get_description());
    }

    std::string make_subcommand(const CLI::App* subcommand) const override
    {
        return item(subcommand->get_name(), subcommand->get_description());
    }

    std::string make_footer(const CLI::App* app) const override
    {
        return reflowed(app->get_footer(), m_width);
    }

private:
    std::string item(const std::string& name, const std::string& text) const
    {
        const std::size_t indent = get_column_width();
        std::string line = "  " + name;
        if (line.size() < indent)
            line.resize(indent, ' ');
        else
            line += '\n' + std::string(indent, ' ');
        return line + wrapped(text, indent, m_width) + '\n';
    }

    std::size_t m_width;
};

const OptionDeclaration globalOptions[] = {
    {"-J,--json", nullptr, "Print a JSON document"},
    {"--json-lines", nullptr, "Print a JSON object a line"},
    {"-o,--output", " LIST",
     "Columns to show, separated by commas; with '+' in front, besides the usual ones"},
    {"-O,--output-all", nullptr, "Show all columns"},
    {"-n,--noheadings", nullptr, "Print no headings"},
    {"-r,--raw", nullptr,
     "Do not align columns; blanks and unprintable bytes in names become \\xNN"},
    {"-P,--pairs", nullptr, "Print NAME=\"value\" pairs, escaped for a shell"},
    {"-z,--zero", nullptr, "Print one column, each answer unaltered and with a NUL behind it"},
    {"--color{always}", "[=WHEN]",
     "Show headings, states and marks in colour: auto (on a terminal without NO_COLOR; the "
     "default), always or never"},
    {"--trace{6}", "[=LEVEL]",
     "Print the library's trace lines to standard error, up to a level from 1 to 6, which is all "
     "of them"},
    {"--trace-file", " FILE", "Append trace lines to a file instead"}};

const OptionDeclaration nullOption{"-0,--null", nullptr,
                                   "Paths on standard input are NUL-separated"};

void declare(CLI::App& app, const OptionDeclaration& option)
{
    if (option.value == nullptr) {
        app.add_flag(option.names)->description(option.help)->disable_flag_override();
        return;
    }
    CLI::Option* added =
        option.hasOptionalValue() ? app.add_flag(option.names) : app.add_option(option.names);
    added->option_text(option.value)->description(option.help)->take_last();
}

CLI::Option* addPaths(CLI::App& app)
{
    CLI::Option* paths = app.add_option("PATH")
                             ->option_text(" ...")
                             ->description(pathHelp)
                             ->expected(1, CLI::detail::expected_max_vector_size)
                             ->allow_extra_args();
    declare(app, nullOption);
    return paths;
}

void addArguments(CLI::App& app, Arguments arguments)
{
    if (arguments == Arguments::diskAndNumber) {
        app.add_option("DISK")
            ->description("Path of a whole disk; '-' reads such paths from standard "
                          "input, as PATH does elsewhere")
            ->required();
        app.add_option("N")->description("Partition number, 0 to 4294967295")->required();
        declare(app, nullOption);
    } else if (arguments != Arguments::none) {
        addPaths(app)->required(arguments == Arguments::paths);
    }
}

/// A line for each column.
std::string columnsHelp(const std::vector<Heading>& headings)
{
    std::size_t width = 0;
    for (const Heading& heading : headings)
        width = std::max(width, heading.name.size());
    std::string text = "Columns:";
    for (const Heading& heading : headings) {
        std::string name(heading.name);
        name.resize(width, ' ');
        text += "\n  " + name + "  " + std::string(heading.help);
    }
    return text;
}

std::string examplesHelp(const std::vector<Example>& examples)
{
    std::string text = "Examples:";
    for (const Example& example : examples)
        text += std::string("\n  dmpclaim ") + example.arguments + "\n      " + example.purpose;
    return text;
}

/// What follows the options in a subcommand's help.
std::string footerOf(const Subcommand& subcommand)
{
    std::string footer = subcommand.footer + "\n\n";
    if (subcommand.headings != nullptr)
        footer += columnsHelp(subcommand.headings({}).all) + "\n\n" + otherOptions + "\n\n";
    return footer + examplesHelp(subcommand.examples);
}

void addSubcommand(CLI::App& app, const Subcommand& subcommand)
{
    CLI::App* added = app.add_subcommand(subcommand.name, subcommand.help);
    added->footer(footerOf(subcommand));
    addArguments(*added, subcommand.arguments);
    for (const OptionDeclaration& option : subcommand.options)
        declare(*added, option);
}

} // namespace

void declareCommandLine(CLI::App& app, const std::vector<Subcommand>& subcommands,
                        std::size_t width)
{
    app.formatter(std::make_shared<HelpFormatter>(width));
    app.set_help_flag("-h,--help", "Print help and exit");
    app.set_version_flag("-V,--version", "dmpclaim " DMPCLAIM_VERSION,
                         "Print the version and exit");
    app.footer(std::string(globalFooter) + "\n\n" + examplesHelp(globalExamples));
    app.require_subcommand(1);
    app.fallthrough();
    for (const OptionDeclaration& option : globalOptions)
        declare(app, option);
    for (const Subcommand& subcommand : subcommands)
        addSubcommand(app, subcommand);
    CLI::App* help = app.add_subcommand(helpSubcommand, "Print the help of a subcommand");
    help->footer(examplesHelp(
        {{"help", "what the command can do"}, {"help show", "the columns and options of 'show'"}}));
    help->add_option("SUBCOMMAND")
        ->description("The subcommand; without it, the help of the whole command");
}

} // namespace command
