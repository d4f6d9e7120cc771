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
constexpr std::string_view retry = "Obtaining dmp nodes failed. need to retry.";

/// The number that ends a failure's line; the message before it may hold anything.
///
///     failure = fails message failureNumber number "'."
std::optional<int> failureResult(std::string_view text)
{
    const std::size_t found = text.rfind(failureNumber);
    int number = 0;
    if (found == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(found + failureNumber.size());
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() ? std::optional(number) : std::nullopt;
}

} // namespace

TraceEvent traceEvent(int level, std::string_view text)
{
    if (level == 3 && startsWith(text, starts))
        return {Kind::toolStarts, text.substr(starts.size()), {}};
    if (level == 2 && startsWith(text, fails))
        return {Kind::toolFails, {}, failureResult(text)};
    if (level == 1 && text == cannotRun)
        return {Kind::toolCannotRun, {}, {}};
    if (level == 6 && startsWith(text, ends))
        return {Kind::toolEnds, {}, {}};
    if (level == 6 && text == retry)
        return {Kind::waitStarts, {}, {}};
    return {};
}

} // namespace command
