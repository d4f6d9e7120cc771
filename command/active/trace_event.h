#ifndef ACTIVE_TRACE_EVENT_H
#define ACTIVE_TRACE_EVENT_H

#include <optional>
#include <string_view>

namespace command {

/// What a trace line of the library tells about a lookup.
struct TraceEvent {
    enum class Kind {
        toolStarts, // written before the tool is started
        toolFails,
        toolCannotRun,
        toolEnds,       // follows each start, also after a failure
        toolAnswers,    // the tool has succeeded and printed something
        noOutput,       // what the tool printed is too short for a table
        headerNotFirst, // what the tool printed has a line before the header
        activePath,     // the lookup has found one
        waitStarts,     // ends with the next line
        other
    };

    Kind kind = Kind::other;
    std::string_view command;  // of toolStarts; a part of the line, as output is
    std::optional<int> result; // of toolFails
    std::string_view output;   // of toolFails and toolAnswers: the lines, without their ends
};

/// Reads a line. Text that a tool printed, or that a name holds, is never taken for another line:
/// each line begins with words of the library.
TraceEvent traceEvent(int level, std::string_view text);

} // namespace command

#endif
