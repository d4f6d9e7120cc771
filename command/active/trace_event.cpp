#include "active/trace_event.h"

#include <charconv>

#include "text/text.h"

namespace command {

namespace {

using Kind = TraceEvent::Kind;

constexpr std::string_view starts = "ExecuteCommand command: ";
constexpr std::string_view fails = "Warning - failed with message='";
constexpr std::string_view failureNumber = "' and error no '";
constexpr std::string_view cannotRun = "ExecuteCommand - exception thrown in command execution.";
constexpr std::string_view ends = "Exiting Function executeCommand ";
constexpr std::string_view answers = "ExecuteCommand passed with output '";
constexpr std::string_view noOutput = "Warning - no output of command.";
constexpr std::string_view headerNotFirst = "Warning - no valid output of command.";
constexpr std::string_view activePath = "Got active path [";
constexpr std::string_view retry = "Obtaining dmp nodes failed. need to retry.";

/// A failure: the message before the number may hold anything.
///
///     failure = fails message failureNumber number "'."
TraceEvent failureEvent(std::string_view text)
{
    TraceEvent event{Kind::toolFails, {}, {}, {}};
    const std::size_t end = text.rfind(failureNumber);
    if (end == std::string_view::npos)
        return event;
    event.output = text.substr(fails.size(), end - fails.size());
    text.remove_prefix(end + failureNumber.size());
    int number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc())
        event.result = number;
    return event;
}

TraceEvent warningEvent(std::string_view text)
{
    if (startsWith(text, fails))
        return failureEvent(text);
    if (text == noOutput)
        return {Kind::noOutput, {}, {}, {}};
    return {text == headerNotFirst ? Kind::headerNotFirst : Kind::other, {}, {}, {}};
}

TraceEvent detailEvent(std::string_view text)
{
    if (startsWith(text, answers))
        return {Kind::toolAnswers, {}, {}, text.substr(answers.size())};
    if (startsWith(text, ends))
        return {Kind::toolEnds, {}, {}, {}};
    if (text == retry)
        return {Kind::waitStarts, {}, {}, {}};
    return {startsWith(text, activePath) ? Kind::activePath : Kind::other, {}, {}, {}};
}

} // namespace

TraceEvent traceEvent(int level, std::string_view text)
{
    switch (level) {
    case 1:
        return {text == cannotRun ? Kind::toolCannotRun : Kind::other, {}, {}, {}};
    case 2:
        return warningEvent(text);
    case 3:
        if (startsWith(text, starts))
            return {Kind::toolStarts, text.substr(starts.size()), {}, {}};
        return {};
    case 6:
        return detailEvent(text);
    default:
        return {};
    }
}

} // namespace command
