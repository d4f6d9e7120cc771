#include "doctor/finding_output.h"

#include "text/printable.h"
#include "text/shell_word.h"
#include "text/wrapped.h"

namespace command {

namespace {

constexpr std::size_t indent = 9;

std::string counted(std::size_t count, const char* noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

/// An indented line that is not wrapped, so that a command in it can be pasted into a shell.
std::string unbroken(const std::string& text)
{
    return std::string(indent, ' ') + printable(text) + '\n';
}

} // namespace

const char* stateName(Finding::State state)
{
    switch (state) {
    case Finding::State::ok:
        return "ok";
    case Finding::State::note:
        return "note";
    case Finding::State::warning:
        return "warning";
    default:
        return "error";
    }
}

std::string findingText(const Finding& finding)
{
    std::string text = stateName(finding.state);
    text.resize(indent, ' ');
    text += wrapped(printable(finding.subject + ": " + finding.text), indent) + '\n';
    if (!finding.command.empty())
        text += unbroken(shellCommand(finding.command));
    if (!finding.remedy.empty())
        text += unbroken("To do: " + finding.remedy);
    return text;
}

Document findingDocument(const Finding& finding)
{
    const std::string command = finding.command.empty() ? "" : ' ' + shellCommand(finding.command);
    return Document::Record{{"state", stateName(finding.state)},
                            {"subject", finding.subject},
                            {"text", finding.text + command},
                            {"advice", finding.remedy.empty() ? Field() : Field(finding.remedy)}};
}

std::string summary(const FindingCounts& counts)
{
    const auto count = [&](Finding::State state) {
        const auto found = counts.find(state);
        return found == counts.end() ? 0 : found->second;
    };
    const std::size_t errors = count(Finding::State::error);
    const std::size_t warnings = count(Finding::State::warning);
    if (errors == 0 && warnings == 0)
        return "Nothing is wrong.\n";
    if (errors == 0)
        return counted(warnings, "warning") + '\n';
    return counted(errors, "error") + ", " + counted(warnings, "warning") + '\n';
}

} // namespace command
