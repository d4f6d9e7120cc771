#include "vstring/Y_strings.h"

#include <cstdio>

int32_t Y_vsnprintf(char* dst, size_t size, const char* format, va_list args)
{
    if (size == 0 || dst == nullptr)
        return -1;
    const int32_t length = std::vsnprintf(dst, size, format, args);
    if (length < 0) {
        dst[0] = '\0';
        return 0;
    }
    if (length < static_cast<int32_t>(size))
        return length;
    dst[size - 1] = '\0';
    return static_cast<int32_t>(size - 1);
}

int32_t Y_snprintf(char* dst, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int32_t length = Y_vsnprintf(dst, size, format, args);
    va_end(args);
    return length;
}
