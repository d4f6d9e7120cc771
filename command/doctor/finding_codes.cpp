#include "doctor/finding_codes.h"

#include <algorithm>

#include "text/wrapped.h"

namespace command {

namespace {

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()) + 1, ' ');
    return text;
}

constexpr std::size_t longestName()
{
    std::size_t longest = 0;
    for (const CodeFacts& facts : codeTable)
        longest = std::max(longest, std::string_view(facts.name).size());
    return longest;
}

std::string columnsOf(const CodeFacts& facts)
{
    return padded(facts.name, longestName()) + padded(severityName(facts.severity), 7);
}

} // namespace

std::optional<Code> codeNamed(std::string_view name)
{
    for (const CodeFacts& facts : codeTable) {
        if (facts.name == name)
            return facts.code;
    }
    return std::nullopt;
}

const char* severityName(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return "ok";
    case Severity::note:
        return "note";
    case Severity::warning:
        return "warning";
    default:
        return "error";
    }
}

std::string codeList()
{
    std::string list;
    for (const CodeFacts& facts : codeTable)
        list += columnsOf(facts) + facts.meaning + '\n';
    return list;
}

std::string codeHelp()
{
    constexpr std::size_t margin = 2;
    std::string list;
    for (const CodeFacts& facts : codeTable) {
        const std::string columns = columnsOf(facts);
        list += std::string(margin, ' ') + columns +
                wrapped(facts.meaning, margin + columns.size()) + '\n';
    }
    return list;
}

} // namespace command
