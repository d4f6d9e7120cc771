#ifndef CLI_TRACE_H
#define CLI_TRACE_H

#include <optional>
#include <string>

#include "pdk/include/czetracelog.h"

namespace command {

/// Which trace lines the user wants, and where.
struct TraceOptions {
    std::optional<int> level; // none given: all lines, if there is a file
    std::optional<std::string> file;
};

/// Where the lines that the user asked for go: to the file or to standard error; an empty handle
/// when none were. Throws UsageError when the file cannot be written.
koze_pdk_4_4::CZeTraceSinkHandle openTraceSink(const TraceOptions& options);

/// The trace log that the user asked for, with that sink; an empty handle when none was.
koze_pdk_4_4::CZeTraceLogHandle openTraceLog(const TraceOptions& options);

} // namespace command

#endif
