#include "cli/options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "cli/column_list.h"
#include "cli/command_line.h"
#include "cli/parsing.h"
#include "cli/usage_error.h"

namespace command {

namespace {

unsigned int parsePartitionNumber(const std::string& text)
{
    const std::optional<unsigned int> number = parseNumber(text);
    if (!number)
        throw UsageError("'" + text + "' is not a partition number (0 to 4294967295)");
    return *number;
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

const Subcommand& subcommandNamed(const std::string& name,
                                  const std::vector<Subcommand>& subcommands)
{
    return *std::find_if(subcommands.begin(), subcommands.end(),
                         [&](const Subcommand& subcommand) { return subcommand.name == name; });
}

/// An option that says how answers look.
struct FormOption {
    const char* name;
    Form form;
};

constexpr FormOption formOptions[] = {{"--json", Form::json},
                                      {"--json-lines", Form::jsonLines},
                                      {"--raw", Form::raw},
                                      {"--pairs", Form::pairs},
                                      {"--zero", Form::zero}};

/// For a subcommand that prints no table.
void rejectTableOptions(const CLI::App& app, const std::string& name)
{
    for (const char* option :
         {"--output", "--output-all", "--noheadings", "--raw", "--pairs", "--zero"}) {
        if (isGiven(app, option))
            throw UsageError(name + " prints no columns and takes no " + option);
    }
}

/// For options that contradict each other.
void rejectBoth(const CLI::App& app, const std::string& option, const std::string& other)
{
    if (isGiven(app, option.c_str()) && isGiven(app, other.c_str()))
        throw UsageError(option + " and " + other + " exclude each other: leave one of them out");
}

/// The form that the user chooses; nothing without a choice.
std::optional<Form> chosenForm(const CLI::App& app)
{
    const FormOption* chosen = nullptr;
    for (const FormOption& option : formOptions) {
        if (!isGiven(app, option.name))
            continue;
        if (chosen != nullptr)
            rejectBoth(app, chosen->name, option.name);
        chosen = &option;
    }
    return chosen == nullptr ? std::nullopt : std::optional(chosen->form);
}

void readColumns(const CLI::App& app, Options& options)
{
    rejectBoth(app, "--output", "--output-all");
    const Headings headings = options.subcommand->headings(options);
    const std::vector<Heading>& usual = isJson(options.form) ? headings.json : headings.usual;
    options.columns = isGiven(app, "--output-all") ? headings.all : usual;
    if (const std::optional<std::string> list = lastValue(app, "--output"))
        options.columns = chosenColumns(*list, usual, headings.all);
    if (options.form == Form::zero && options.columns.size() != 1)
        throw UsageError("--zero prints one column; choose it with -o: " +
                         namesOf(options.columns));
}

void readOutput(const CLI::App& app, Options& options)
{
    const bool choosesColumns = isGiven(app, "--output") || isGiven(app, "--output-all");
    if (options.subcommand->headings == nullptr)
        rejectTableOptions(app, options.subcommand->name);
    const Form given = options.subcommand->form;
    const Form usual = given == Form::bare && choosesColumns ? Form::table : given;
    options.form = chosenForm(app).value_or(usual);
    options.withHeadings = usual == Form::table && !isGiven(app, "--noheadings");
    if (options.subcommand->headings != nullptr)
        readColumns(app, options);
    for (const char* json : {"--json", "--json-lines"})
        rejectBoth(app, json, "--noheadings");
}

/// An empty variable of a script would otherwise limit the answer to no disk at all.
void rejectEmptyPaths(const std::vector<std::string>& paths)
{
    if (std::find(paths.begin(), paths.end(), "") != paths.end())
        throw UsageError("an empty argument names no disk; leave it out to ask about all disks");
}

void readArguments(const CLI::App& app, Options& options)
{
    const Arguments arguments = options.subcommand->arguments;
    if (arguments == Arguments::diskAndNumber) {
        options.paths = valuesOf(app, "DISK");
        options.partnum = parsePartitionNumber(*lastValue(app, "N"));
    } else if (arguments != Arguments::none) {
        options.paths = valuesOf(app, "PATH");
    }
    if (arguments == Arguments::optionalPaths)
        rejectEmptyPaths(options.paths);
    options.nulSeparated = arguments != Arguments::none && isGiven(app, "--null");
    for (const OptionDeclaration& option : options.subcommand->options) {
        const std::string name = option.longName();
        if (isGiven(app, name.c_str()))
            options.own[name] = lastValue(app, name.c_str()).value_or("");
    }
}

ColorChoice parseColor(const std::optional<std::string>& text)
{
    if (!text || *text == "auto")
        return ColorChoice::automatic;
    if (*text != "always" && *text != "never")
        throw UsageError("'" + *text + "' is no choice of colours (auto, always, never)");
    return *text == "always" ? ColorChoice::always : ColorChoice::never;
}

Options readOptions(const CLI::App& app, const std::vector<Subcommand>& subcommands)
{
    const CLI::App& given = *app.get_subcommands().front();
    Options options;
    options.subcommand = &subcommandNamed(given.get_name(), subcommands);
    readArguments(given, options);
    readOutput(app, options);
    options.trace.level = parseLevel(lastValue(app, "--trace"));
    options.trace.file = lastValue(app, "--trace-file");
    options.color = parseColor(lastValue(app, "--color"));
    return options;
}

/// The help of the subcommand `name`; without a name, of the whole command.
Information helpOf(CLI::App& app, const std::optional<std::string>& name)
{
    if (!name) {
        app.clear(); // or the help would be that of the subcommand that was given
        return app.help();
    }
    try {
        return app.get_subcommand(*name)->help(app.get_name());
    } catch (const CLI::OptionNotFound&) {
        throw UsageError("unknown subcommand '" + *name + "'; there are " + subcommandNames(app));
    }
}

} // namespace

std::optional<unsigned int> parseNumber(const std::string& text)
{
    unsigned int number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<std::chrono::milliseconds> parseSeconds(const std::string& text)
{
    constexpr char letters[] = "0123456789.";
    double seconds = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    if (result.ec != std::errc() || result.ptr != end || text.front() == '.' ||
        text.back() == '.' || text.find_first_not_of(letters) != std::string::npos ||
        seconds > 1e12)
        return std::nullopt;
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::optional<std::string> Options::value(const char* option) const
{
    const auto found = own.find(option);
    return found == own.end() ? std::nullopt : std::optional(found->second);
}

std::variant<Options, Information> parseOptions(const std::vector<std::string>& arguments,
                                                const std::vector<Subcommand>& subcommands,
                                                std::size_t width)
{
    CLI::App app("Shows which multipath driver owns a block device path.", "dmpclaim");
    declareCommandLine(app, subcommands, width);
    try {
        parse(app, arguments, subcommands);
        if (app.got_subcommand(helpSubcommand))
            return helpOf(app, lastValue(*app.get_subcommand(helpSubcommand), "SUBCOMMAND"));
        return readOptions(app, subcommands);
    } catch (const CLI::CallForHelp&) {
        return app.help();
    } catch (const CLI::CallForVersion& version) {
        return version.what() + std::string("\n");
    } catch (const UsageError& error) {
        const std::vector<CLI::App*> given = app.get_subcommands();
        throw UsageError(error.what(), given.empty() ? std::string() : given.front()->get_name());
    }
}

} // namespace command
