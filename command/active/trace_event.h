#ifndef ACTIVE_TRACE_EVENT_H
#define ACTIVE_TRACE_EVENT_H

#include <optional>
#include <string_view>

namespace command {

/// What a trace line of the library tells about a lookup.
struct TraceEvent {
    enum class Kind {
        toolStarts, // the next thing that happens
        toolFails,
        toolCannotRun,
        toolEnds,   // follows each start, also behind a failure
        waitStarts, // ends with the next line
        other
    };

    Kind kind = Kind::other;
    std::string_view command;  // of toolStarts; a part of the line
    std::optional<int> result; // of toolFails
};

/// Reads a line. What a tool printed, or a name holds, cannot pass for another line: the library
/// begins each line with its own words.
TraceEvent traceEvent(int level, std::string_view text);

} // namespace command

#endif
