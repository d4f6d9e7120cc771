#include "pdk/include/czetracelog.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "hoststate.h"

namespace koze_pdk_4_4 {

namespace {

/// Formats a line that is wanted and stores it. Not inlined: `trace` would save registers for it
/// before it looks at the level, which slows down every line that is not wanted.
[[gnu::noinline]] void store(CZeTraceSink* wanting, int level, const char* format,
                             va_list arguments)
{
    const HostState kept;
    // A callback may replace the sink, or release the log, while it runs.
    const CZeTraceSinkHandle sink = wanting;
    char* text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    if (length < 0) {
        sink->drop();
        return;
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
    sink->write(level, {text, static_cast<std::size_t>(length)});
}

} // namespace

void CZeTraceLog::trace(int level, const char* format, ...)
{
    // The object is a sink: only setSink sets the handle.
    auto* const sink = static_cast<CZeTraceSink*>(m_object.get());
    if (sink == nullptr || !sink->wants(level))
        return;
    va_list arguments;
    va_start(arguments, format);
    store(sink, level, format, arguments);
    va_end(arguments);
}

} // namespace koze_pdk_4_4
