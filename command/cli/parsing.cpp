#include "cli/parsing.h"

#include <algorithm>
#include <utility>

#include "cli/options.h"
#include "cli/usage_error.h"
#include "text/text.h"
#include "text/word_list.h"

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

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos;
}

/// The option whose value may be left out, by one of its names; null when it is no such option.
const OptionDeclaration* optionalValueOption(const std::string& name,
                                             const std::vector<Subcommand>& subcommands)
{
    for (const Subcommand& subcommand : subcommands) {
        for (const OptionDeclaration& option : subcommand.options) {
            if (option.hasOptionalValue() &&
                (name == option.longName() || name == option.firstName()))
                return &option;
        }
    }
    return nullptr;
}

/// Joins an option whose value may be left out with the value, as CLI11 reads it:  -w 5  and  -w=5
/// become  --watch=5
std::vector<std::string> withJoinedValues(const std::vector<std::string>& arguments,
                                          const std::vector<Subcommand>& subcommands)
{
    std::vector<std::string> result;
    const OptionDeclaration* option = nullptr;
    bool onlyValues = false;
    for (const std::string& argument : arguments) {
        const std::size_t end = std::min(argument.find('='), argument.size());
        if (option != nullptr && isNumber(argument))
            result.back() = option->longName() + '=' + argument;
        else
            result.push_back(argument);
        onlyValues = onlyValues || argument == "--";
        option = onlyValues ? nullptr : optionalValueOption(argument.substr(0, end), subcommands);
        if (option != nullptr && end < argument.size())
            result.back() = std::exchange(option, nullptr)->longName() + argument.substr(end);
    }
    return result;
}

std::string unescaped(const std::string& value)
{
    return value.find(escape) == 0 ? value.substr(1) : value;
}

/// CLI11 would take the next argument for the value when nothing follows the '='.
void rejectEmptyValues(const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments) {
        if (startsWith(argument, "--") && argument.back() == '=')
            throw UsageError("option '" + argument + "' lacks its value");
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
    const std::string text = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr)
        return app.get_subcommands().empty()
                   ? "no subcommand is given; there are " + subcommandNames(app)
                   : text;
    const std::string name = text.substr(0, text.find_first_of(": "));
    return startsWith(text, name + ':') ? name + " needs a value" : "--" + name + " takes no value";
}

UsageError levelApart(const std::string& level)
{
    const std::string quoted = '\'' + level + '\'';
    return UsageError(quoted + " behind --trace is no level: write --trace=" + level +
                      ", or put the argument " + quoted + " in front of --trace");
}

/// --trace takes its level after a '=' only: a path may follow it.
void rejectLevelApart(const std::vector<std::string>& arguments)
{
    for (std::size_t i = 0; i + 1 < arguments.size() && arguments[i] != "--"; ++i) {
        const std::string& level = arguments[i + 1];
        if (arguments[i] == "--trace" && level.size() == 1 && parseNumber(level))
            throw levelApart(level);
    }
}

} // namespace

void parse(CLI::App& app, const std::vector<std::string>& arguments,
           const std::vector<Subcommand>& subcommands)
{
    rejectLevelApart(arguments);
    std::vector<std::string> reversed = escaped(withJoinedValues(arguments, subcommands));
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

std::vector<std::string> valuesOf(const CLI::App& app, const char* option)
{
    std::vector<std::string> values;
    for (const std::string& value : app.get_option(option)->results())
        values.push_back(unescaped(value));
    return values;
}

bool isGiven(const CLI::App& app, const char* option)
{
    return app.get_option(option)->count() > 0;
}

std::optional<std::string> lastValue(const CLI::App& app, const char* option)
{
    const std::vector<std::string> values = valuesOf(app, option);
    return values.empty() ? std::nullopt : std::optional(values.back());
}

std::string subcommandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* subcommand : app.get_subcommands({}))
        names.push_back(subcommand->get_name());
    return joined(names);
}

} // namespace command
