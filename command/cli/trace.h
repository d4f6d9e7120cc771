#ifndef CLI_TRACE_H
#define CLI_TRACE_H

#include <optional>
#include <string>

#include "pdk/include/czetracelog.h"

namespace command {

/// Which trace lines the user wants, and where.
struct TraceOptions {
    std::optional<int> level; // without it: all lines, if there is a file
    std::optional<std::string> file;
};

/// The sink for the lines that the user asked for: the file or standard error. An empty handle when
/// the user asked for none. Throws UsageError when the file cannot be written.
koze_pdk_4_4::CZeTraceSinkHandle openTraceSink(const TraceOptions& options);

/// A trace log with that sink; an empty handle when there is none. Throws as openTraceSink does.
koze_pdk_4_4::CZeTraceLogHandle openTraceLog(const TraceOptions& options);

} // namespace command

#endif
