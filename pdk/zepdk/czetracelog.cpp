#include "pdk/include/czetracelog.h"

#include <cstdarg>
#include <cstdio>
#include <new>
#include <optional>
#include <string>

namespace {

/// Formats as vsnprintf does; nothing when the text cannot be formatted. `arguments` and `again`
/// are two copies of one list: a line that outgrows the stack is formatted a second time.
std::optional<std::string> formatted(const char* format, va_list arguments, va_list again)
{
    char line[512];
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    if (length < 0)
        return std::nullopt;
    const auto size = static_cast<std::size_t>(length);
    if (size < sizeof line)
        return std::string(line, size);
    std::string text(size, '\0');
    if (std::vsnprintf(text.data(), size + 1, format, again) != length)
        return std::nullopt;
    return text;
}

} // namespace

namespace koze_pdk_4_4 {

void CZeTraceLog::trace(int level, const char* format, ...)
{
    if (!m_sink || !m_sink->wants(level))
        return;
    std::optional<std::string> text;
    va_list arguments;
    va_list again;
    va_start(arguments, format);
    va_start(again, format);
    try {
        text = formatted(format, arguments, again);
    } catch (const std::bad_alloc&) {
        // Tracing must not end an operation that would have succeeded without it.
        text.reset();
    }
    va_end(again);
    va_end(arguments);
    if (text)
        m_sink->write(level, *text);
    else
        m_sink->drop();
}

} // namespace koze_pdk_4_4
