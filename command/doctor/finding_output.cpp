#include "doctor/finding_output.h"

#include "output/painted.h"
#include "text/printable.h"
#include "text/word_list.h"
#include "text/wrapped.h"

namespace command {

namespace {

constexpr std::size_t indent = 9;

std::string indented(const std::string& lines)
{
    return std::string(indent, ' ') + lines + '\n';
}

Tone toneOf(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return Tone::good;
    case Severity::note:
        return Tone::note;
    case Severity::warning:
        return Tone::warning;
    default:
        return Tone::bad;
    }
}

Field textOrNull(const std::string& text)
{
    return text.empty() ? Field() : Field(text);
}

} // namespace

std::string findingText(const Finding& finding, const OutputStream& output)
{
    const std::string severity = severityName(finding.severity());
    const std::string about = factsOf(finding.code).name + (' ' + finding.device);
    std::string text = painted(severity, toneOf(finding.severity()), output) +
                       std::string(indent - severity.size(), ' ') +
                       wrapped(printable(about + ": " + finding.text), indent, output.width()) +
                       '\n';
    if (!finding.advice.empty())
        text += indented(wrapped("To do: " + printable(finding.advice), indent, output.width()));
    if (!finding.remedy.empty()) // unbroken, so that it can be pasted into a shell
        text += indented("Type: " + printable(finding.remedy));
    return text;
}

Document findingDocument(const Finding& finding)
{
    return Document::Record{{"code", factsOf(finding.code).name},
                            {"severity", severityName(finding.severity())},
                            {"device", finding.device},
                            {"text", finding.text},
                            {"advice", textOrNull(finding.advice)},
                            {"remedy", textOrNull(finding.remedy)}};
}

std::size_t countOf(const FindingCounts& counts, Severity severity)
{
    const auto found = counts.find(severity);
    return found == counts.end() ? 0 : found->second;
}

std::string summary(const FindingCounts& counts)
{
    const std::size_t errors = countOf(counts, Severity::error);
    const std::size_t warnings = countOf(counts, Severity::warning);
    if (errors == 0 && warnings == 0)
        return "Nothing is wrong.\n";
    if (errors == 0)
        return counted(warnings, "warning") + '\n';
    return counted(errors, "error") + ", " + counted(warnings, "warning") + '\n';
}

} // namespace command
