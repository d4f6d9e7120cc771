#include "cli/trace.h"

#include <system_error>

#include "cli/usage_error.h"
#include "pdk/include/czetracesink.h"

using namespace koze_pdk_4_4;

namespace command {

namespace {

CZeTraceSinkHandle openSink(int level, const std::optional<std::string>& file)
{
    if (!file)
        return new CZeTraceStderrSink(level);
    try {
        return new CZeTraceFileSink(level, *file);
    } catch (const std::system_error& error) {
        throw UsageError("cannot write trace file '" + *file + "': " + error.code().message());
    }
}

} // namespace

CZeTraceSinkHandle openTraceSink(const TraceOptions& options)
{
    if (!options.level && !options.file)
        return {};
    return openSink(options.level.value_or(CZeTraceSink::everything), options.file);
}

CZeTraceLogHandle openTraceLog(const TraceOptions& options)
{
    const CZeTraceSinkHandle sink = openTraceSink(options);
    if (!sink)
        return {};
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(sink);
    return log;
}

} // namespace command
