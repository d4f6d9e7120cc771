// A framework as a host may have one, with as little as the library calls. It knows no sinks: its
// log prints every line, after the framework's name.
#include <cstdarg>
#include <cstdio>

#include "pdk/include/czetracelog.h"

extern const char frameworkName[];

void koze_pdk_4_4::CZeTraceLog::trace(int level, const char* format, ...)
{
    std::fprintf(stderr, "%s %d ", frameworkName, level);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}
