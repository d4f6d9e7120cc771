#include "cli/options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>

#include "cli/column_list.h"
#include "cli/command_line.h"
#include "cli/usage_error.h"
#include "text/text.h"

namespace command {

namespace {

// CLI11 reads a value in brackets as a list, reads "++" for the end of a subcommand, and knows "--"
// in front of the first argument only. A NUL before such a value, which no argument can hold, makes
// it a plain value; `unescaped` removes it again.
constexpr char escape = '\0';

std::vector<std::string> escaped(const std::vector<std::string>& arguments)
{
    std::vector<std::string> result;
    bool onlyValues = false;
    for (const std::string& argument : arguments) {
        const bool isList = !argument.empty() && argument.front() == '[' && argument.back() == ']';
        if (onlyValues || isList || argument == "++")
            result.push_back(escape + argument);
        else if (argument == "--")
            onlyValues = true;
        else
            result.push_back(argument);
    }
    return result;
}

std::string unescaped(const std::string& value)
{
    return !value.empty() && value.front() == escape ? value.substr(1) : value;
}

/// CLI11 would take the next argument for the value when nothing follows the '='.
void rejectEmptyValues(const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments) {
        if (startsWith(argument, "--") && argument.back() == '=')
            throw UsageError("option '" + argument + "' lacks its value");
    }
}

std::vector<std::string> valuesOf(const CLI::Option* option)
{
    std::vector<std::string> values;
    for (const std::string& value : option->results())
        values.push_back(unescaped(value));
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

/// For a subcommand that prints no table.
void rejectTableOptions(const CLI::App& app, const std::string& name)
{
    for (const char* option : {"--output", "--noheadings", "--raw"}) {
        if (isGiven(app, option))
            throw UsageError(name + " prints no columns and takes no " + option);
    }
}

void readColumns(const CLI::App& app, Options& options)
{
    const Headings headings = options.subcommand->headings(options);
    const std::optional<std::string> list = lastValue(app, "--output");
    if (list && options.form == Form::bare)
        options.form = Form::table;
    options.withHeadings = options.form == Form::table && !isGiven(app, "--noheadings");
    if (isGiven(app, "--raw"))
        options.form = Form::raw;
    if (isGiven(app, "--json"))
        options.form = Form::json;
    const std::vector<Heading>& usual = options.form == Form::json ? headings.json : headings.usual;
    options.columns = list ? chosenColumns(*list, usual, headings.all) : usual;
}

void readOutput(const CLI::App& app, Options& options)
{
    options.form = options.subcommand->form;
    if (options.subcommand->headings != nullptr) {
        readColumns(app, options);
        return;
    }
    rejectTableOptions(app, options.subcommand->name);
    if (isGiven(app, "--json"))
        options.form = Form::json;
}

void readArguments(const CLI::App& app, Options& options)
{
    switch (options.subcommand->arguments) {
    case Arguments::none:
        break;
    case Arguments::paths:
    case Arguments::optionalPaths:
        options.paths = valuesOf(app.get_option("PATH"));
        options.nulSeparated = isGiven(app, "--null");
        break;
    case Arguments::diskAndNumber:
        options.paths = valuesOf(app.get_option("DISK"));
        options.partnum = parsePartitionNumber(*lastValue(app, "N"));
        options.nulSeparated = isGiven(app, "--null");
        break;
    }
    for (const OwnOption& option : options.subcommand->options) {
        const std::string name = std::strstr(option.names, "--");
        if (isGiven(app, name.c_str()))
            options.own[name] = lastValue(app, name.c_str()).value_or("");
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
        return kind + unescaped(argument) + "'";
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
    std::vector<std::string> reversed = escaped(arguments);
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

Options readOptions(const CLI::App& app, const std::vector<Subcommand>& subcommands)
{
    const CLI::App& given = *app.get_subcommands().front();
    Options options;
    options.subcommand = &subcommandNamed(given.get_name(), subcommands);
    readArguments(given, options);
    readOutput(app, options);
    options.trace.level = parseLevel(lastValue(app, "--trace"));
    options.trace.file = lastValue(app, "--trace-file");
    return options;
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
                                                const std::vector<Subcommand>& subcommands)
{
    CLI::App app("Shows which multipath driver owns a block device path.", "dmpclaim");
    declareCommandLine(app, subcommands);
    try {
        parse(app, arguments);
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
