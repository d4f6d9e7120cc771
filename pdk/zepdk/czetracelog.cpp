#include "pdk/include/czetracelog.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "hoststate.h"

namespace koze_pdk_4_4 {

void CZeTraceLog::trace(int level, const char* format, ...)
{
    // The object is a sink: only setSink sets the handle.
    auto* const current = static_cast<CZeTraceSink*>(m_object.get());
    if (current == nullptr || !current->wants(level))
        return;
    const HostState kept;
    // A callback may replace the sink, or release the log, while it runs.
    const CZeTraceSinkHandle sink = current;
    char* text = nullptr;
    va_list arguments;
    va_start(arguments, format);
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length < 0) {
        sink->drop();
        return;
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
    sink->write(level, {text, static_cast<std::size_t>(length)});
}

} // namespace koze_pdk_4_4
