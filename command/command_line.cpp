#include "command_line.h"

#include <memory>
#include <string>

#include "columns.h"

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
   2  the command line is wrong; nothing was done)";

constexpr char pathHelp[] = "Device paths; '-' reads them from standard input, one a\n"
                            "line, or NUL-separated if a NUL is met before a line end";
constexpr char rowsFooter[] =
    R"(PARTNUM is '-' for a whole disk, and for a device-mapper partition, whose number
the library does not read back.)";
constexpr char bareFooter[] =
    R"(Answers are printed bare, a line each: an empty line when nobody claims.
On a terminal, unprintable bytes become \xNN. With -o they come as a table.)";

constexpr char activeFooter[] =
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

constexpr char doctorFooter[] =
    R"(Looks at the volume manager's tools and asks them about every native disk, or
the PATHs; asking changes nothing. Then it holds the names in /dev against the
kernel's devices. A tool that takes more than 30 seconds, or prints too much, is
ended and not asked again. Commands in findings are quoted for a shell (bash,
zsh, ksh).

Every finding has a state: ok, note (good to know), warning (an answer may be
wrong) or error (it is wrong, or none is given), and says what to do, if
anything. A disk that the volume manager does not hold is a warning: a machine
with such disks is watched by naming the others. A PATH that does not exist is a
warning, too, and one that is no block device an error. JSON holds besides what
somebody who helps from afar needs: versions, modules (in the order in which
they are asked), names, maps (of the kernel's device-mapper), commands (what the
tools answered; for the status see 'dmpclaim active --help') and trace.

Exit status:
   0  nothing is wrong
  64  there are warnings
  32  there are errors

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the tool that runs, and the
command with status 130, 143, 129 or 131.

-J, --trace and the statuses 1 and 2: see 'dmpclaim --help'.)";

constexpr char tableFooter[] =
    "-J, -o, -n, -r, --trace and the exit status: see 'dmpclaim --help'.";

constexpr char explainFooter[] = "-J, --trace and the exit status: see 'dmpclaim --help'.";

/// Shows what follows an option's name as it is declared.
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

CLI::App* addSubcommand(CLI::App& app, const char* name, const char* help,
                        const std::string& footer)
{
    CLI::App* subcommand = app.add_subcommand(name, help);
    subcommand->footer(footer);
    return subcommand;
}

/// One that prints a table.
CLI::App* addSubcommand(CLI::App& app, const char* name, const char* help,
                        const std::string& footer, const command::ColumnSet& columns)
{
    return addSubcommand(app, name, help,
                         footer + "\n\nColumns: " + command::headings(columns.all) + "\n\n" +
                             tableFooter);
}

CLI::Option* addPaths(CLI::App* subcommand)
{
    CLI::Option* paths = subcommand->add_option("PATH")
                             ->option_text(" ...")
                             ->description(pathHelp)
                             ->required()
                             ->expected(1, CLI::detail::expected_max_vector_size)
                             ->allow_extra_args();
    addFlag(*subcommand, "-0,--null", "Paths on standard input are NUL-separated");
    return paths;
}

void addActive(CLI::App& app)
{
    CLI::App* active = addSubcommand(app, "active", "Print the paths that carry the I/O now",
                                     activeFooter, command::activeColumns());
    addPaths(active);
    addFlag(*active, "--refresh",
            "Remove the disk's node from the volume manager and scan\n"
            "all disks before looking it up, up to 4 times, with 10\n"
            "seconds between. It removes the node each time!");
    addFlag(*active, "--dry-run",
            "Run nothing; print the commands and when each would run\n"
            "(columns: NAME, OWNER, COMMAND, WHEN)");
    active->add_option("-j,--jobs")
        ->option_text(" N")
        ->description("Look up N paths at once, 1 to 64 (default 1)")
        ->take_last();
    addFlag(*active, "--no-progress", "Show no progress");
}

void addDoctor(CLI::App& app)
{
    addPaths(addSubcommand(app, "doctor", "Tell what is wrong on this machine, and what to do",
                           doctorFooter))
        ->required(false);
}

void addSubcommands(CLI::App& app)
{
    using namespace command;
    addSubcommand(app, "list", "Show this machine's block devices", rowsFooter, deviceColumns());
    addPaths(addSubcommand(app, "show", "Show who owns paths, and what they name", rowsFooter,
                           deviceColumns()));
    addPaths(addSubcommand(app, "explain", "Tell why, and warn of ambiguous names", explainFooter));
    CLI::App* append = addSubcommand(app, "append", "Print the path of a partition of a disk",
                                     bareFooter, partitionColumns());
    append->add_option("DISK")->description("Path of a whole disk")->required();
    append->add_option("N")->description("Partition number, 0 to 4294967295")->required();
    addPaths(addSubcommand(app, "strip", "Print the paths of the disks that hold partitions",
                           bareFooter, diskColumns()));
    addActive(app);
    addDoctor(app);
    addSubcommand(app, "prefixes", "Print the path prefixes that the drivers claim", bareFooter,
                  prefixColumns());
}

} // namespace

namespace command {

void declareCommandLine(CLI::App& app)
{
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Print help and exit");
    app.set_version_flag("-V,--version", "dmpclaim " DMPCLAIM_VERSION,
                         "Print the version and exit");
    app.footer(globalFooter);
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(app);
    addSubcommands(app);
}

} // namespace command
