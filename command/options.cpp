#include "options.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <unordered_map>

#include "command_line.h"
#include "text.h"
#include "usage_error.h"

using namespace command;

namespace {

// CLI11 reads a value in brackets as a list, takes "++" for the end of a subcommand, and knows "--"
// in front of the first argument only. A NUL before such a value, which no argument can hold, makes
// it a plain value; `plain` takes it away again.
constexpr char guard = '\0';

std::vector<std::string> guarded(const std::vector<std::string>& arguments)
{
    std::vector<std::string> result;
    bool onlyValues = false;
    for (const std::string& argument : arguments) {
        const bool isList = !argument.empty() && argument.front() == '[' && argument.back() == ']';
        if (onlyValues || isList || argument == "++")
            result.push_back(guard + argument);
        else if (argument == "--")
            onlyValues = true;
        else
            result.push_back(argument);
    }
    return result;
}

std::string plain(const std::string& value)
{
    return !value.empty() && value.front() == guard ? value.substr(1) : value;
}

/// CLI11 takes the next argument when nothing follows the '='.
void rejectEmptyValues(const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments) {
        if (command::startsWith(argument, "--") && argument.back() == '=')
            throw UsageError("option '" + argument + "' lacks its value");
    }
}

std::vector<std::string> valuesOf(const CLI::Option* option)
{
    std::vector<std::string> values;
    for (const std::string& value : option->results())
        values.push_back(plain(value));
    return values;
}

bool isGiven(const CLI::App& app, const char* option)
{
    return app.get_option(option)->count() > 0;
}

std::optional<std::string> lastValue(const CLI::App& app, const char* option)
{
    const std::vector<std::string> values = valuesOf(app.get_option(option));
    return values.empty() ? std::nullopt : std::optional(values.back());
}

/// A decimal number of digits only; nothing when it is anything else or does not fit.
std::optional<unsigned int> parseNumber(const std::string& text)
{
    unsigned int number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

unsigned int parsePartitionNumber(const std::string& text)
{
    const std::optional<unsigned int> number = parseNumber(text);
    if (!number)
        throw UsageError("'" + text + "' is not a partition number (0 to 4294967295)");
    return *number;
}

/// A thread and a tool for each are no burden up to here.
constexpr unsigned int mostJobs = 64;

unsigned int parseJobs(const std::optional<std::string>& text)
{
    const std::optional<unsigned int> jobs = text ? parseNumber(*text) : 1;
    if (!jobs || *jobs < 1 || *jobs > mostJobs)
        throw UsageError("'" + *text + "' is not a number of jobs (1 to 64)");
    return *jobs;
}

std::optional<int> parseLevel(const std::optional<std::string>& text)
{
    if (!text)
        return std::nullopt;
    const std::optional<unsigned int> level = parseNumber(*text);
    if (!level || *level < 1 || *level > 6)
        throw UsageError("'" + *text + "' is not a trace level (1 to 6)");
    return static_cast<int>(*level);
}

Subcommand subcommandNamed(const std::string& name)
{
    static const std::unordered_map<std::string, Subcommand> subcommands{
        {"list", Subcommand::list},       {"show", Subcommand::show},
        {"explain", Subcommand::explain}, {"append", Subcommand::append},
        {"strip", Subcommand::strip},     {"prefixes", Subcommand::prefixes},
        {"active", Subcommand::active},   {"doctor", Subcommand::doctor}};
    return subcommands.at(name);
}

bool takesPaths(Subcommand subcommand)
{
    return subcommand == Subcommand::show || subcommand == Subcommand::explain ||
           subcommand == Subcommand::strip || subcommand == Subcommand::active ||
           subcommand == Subcommand::doctor;
}

/// Null for a subcommand that prints no table.
const ColumnSet* columnsOf(const Options& options)
{
    switch (options.subcommand) {
    case Subcommand::active:
        return options.dryRun ? &commandColumns() : &activeColumns();
    case Subcommand::explain:
    case Subcommand::doctor:
        return nullptr;
    case Subcommand::append:
        return &partitionColumns();
    case Subcommand::strip:
        return &diskColumns();
    case Subcommand::prefixes:
        return &prefixColumns();
    default:
        return &deviceColumns();
    }
}

bool isTabular(Subcommand subcommand)
{
    return subcommand == Subcommand::list || subcommand == Subcommand::show ||
           subcommand == Subcommand::active;
}

Form chosenForm(const CLI::App& app, bool hasColumns, bool isTable)
{
    if (isGiven(app, "--json"))
        return Form::json;
    if (!hasColumns)
        return Form::text;
    if (isGiven(app, "--raw"))
        return Form::raw;
    return isTable ? Form::table : Form::bare;
}

/// For a subcommand that prints no table.
void rejectTableOptions(const CLI::App& app, const std::string& name)
{
    for (const char* option : {"--output", "--noheadings", "--raw"}) {
        if (isGiven(app, option))
            throw UsageError(name + " prints no columns and takes no " + option);
    }
}

/// `name` is the subcommand's.
void readOutput(const CLI::App& app, const std::string& name, Options& options)
{
    const std::optional<std::string> list = lastValue(app, "--output");
    const bool isTable = list || isTabular(options.subcommand);
    const ColumnSet* columns = columnsOf(options);
    options.form = chosenForm(app, columns != nullptr, isTable);
    options.withHeadings = isTable && !isGiven(app, "--noheadings");
    if (columns == nullptr) {
        rejectTableOptions(app, name);
        return;
    }
    const std::vector<Column>& usual = options.form == Form::json ? columns->all : columns->usual;
    options.columns = list ? chosenColumns(*list, usual, columns->all) : usual;
}

void readArguments(const CLI::App& subcommand, Options& options)
{
    if (takesPaths(options.subcommand)) {
        options.paths = valuesOf(subcommand.get_option("PATH"));
        options.nulSeparated = isGiven(subcommand, "--null");
    } else if (options.subcommand == Subcommand::append) {
        options.paths = valuesOf(subcommand.get_option("DISK"));
        options.partnum = parsePartitionNumber(*lastValue(subcommand, "N"));
    }
    if (options.subcommand == Subcommand::active) {
        options.refresh = isGiven(subcommand, "--refresh");
        options.dryRun = isGiven(subcommand, "--dry-run");
        options.withProgress = !isGiven(subcommand, "--no-progress");
        options.jobs = parseJobs(lastValue(subcommand, "--jobs"));
    }
}

/// What is wrong, in the user's terms.
std::string describe(const CLI::ParseError& error, const CLI::App& app)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (!unknown.empty()) {
        const std::string& argument = unknown.front();
        const bool isOption = argument.size() > 1 && argument.front() == '-';
        const char* kind = isOption                        ? "unknown option '"
                           : app.get_subcommands().empty() ? "unknown subcommand '"
                                                           : "unexpected argument '";
        return kind + plain(argument) + "'";
    }
    // "--output: 1 required LIST missing", "json was given a disallowed flag override"
    std::string text = error.what();
    const std::size_t end = text.find_first_of(": ");
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr || end == std::string::npos)
        return text;
    return text[end] == ':' ? text.substr(0, end) + " needs a value"
                            : "--" + text.substr(0, end) + " takes no value";
}

void parse(CLI::App& app, const std::vector<std::string>& arguments)
{
    std::vector<std::string> reversed = guarded(arguments);
    rejectEmptyValues(reversed);
    std::reverse(reversed.begin(), reversed.end());
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::Success&) {
        throw;
    } catch (const CLI::ParseError& error) {
        throw UsageError(describe(error, app));
    }
}

Options readOptions(const CLI::App& app)
{
    const CLI::App& subcommand = *app.get_subcommands().front();
    Options options;
    options.subcommand = subcommandNamed(subcommand.get_name());
    readArguments(subcommand, options);
    readOutput(app, subcommand.get_name(), options);
    options.trace.level = parseLevel(lastValue(app, "--trace"));
    options.trace.file = lastValue(app, "--trace-file");
    return options;
}

} // namespace

namespace command {

std::variant<Options, Information> parseOptions(const std::vector<std::string>& arguments)
{
    CLI::App app("Shows which multipath driver owns a block device path.", "dmpclaim");
    declareCommandLine(app);
    try {
        parse(app, arguments);
        return readOptions(app);
    } catch (const CLI::CallForHelp&) {
        return app.help();
    } catch (const CLI::CallForVersion& version) {
        return version.what() + std::string("\n");
    } catch (const UsageError& error) {
        const std::vector<CLI::App*> subcommands = app.get_subcommands();
        throw UsageError(error.what(),
                         subcommands.empty() ? std::string() : subcommands.front()->get_name());
    }
}

} // namespace command
