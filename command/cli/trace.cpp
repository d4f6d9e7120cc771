#include "cli/trace.h"

#include <system_error>
#include <utility>

#include "cli/complaint.h"
#include "cli/usage_error.h"
#include "pdk/include/czetracesink.h"

using namespace koze_pdk_4_4;

namespace command {

namespace {

/// Its destructor adds the number of lines that it lost to the count of all sinks.
class CountingFileSink : public CZeTraceFileSink {
public:
    CountingFileSink(int level, const std::string& path, std::shared_ptr<LostLines> lost)
        : CZeTraceFileSink(level, path), m_lost(std::move(lost))
    {}
    ~CountingFileSink() override { m_lost->add(dropped()); }

private:
    std::shared_ptr<LostLines> m_lost;
};

CZeTraceSinkHandle openFileSink(int level, const TraceOptions& options)
{
    try {
        return new CountingFileSink(level, *options.file, options.lost);
    } catch (const std::system_error& error) {
        throw UsageError("cannot write trace file '" + *options.file +
                         "': " + error.code().message());
    }
}

} // namespace

LostLines::~LostLines()
{
    if (m_lines > 0)
        complain("the trace file could not be written; lines lost: " + std::to_string(m_lines));
}

CZeTraceSinkHandle openTraceSink(const TraceOptions& options)
{
    if (!options.level && !options.file)
        return {};
    const int level = options.level.value_or(CZeTraceSink::everything);
    if (options.file)
        return openFileSink(level, options);
    return new CZeTraceStderrSink(level);
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
