#include "vstring/Y_strings.h"

#include <cstdio>
#include <cstdlib>

#include "bounded.h"

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

int32_t Y_vsnwprintf(wchar_t* dst, size_t size, const wchar_t* format, va_list args)
{
    if (size == 0 || size > PTRDIFF_MAX / sizeof(wchar_t))
        return -1;
    auto* text = static_cast<wchar_t*>(std::malloc(size * sizeof(wchar_t)));
    if (text == nullptr)
        return -1;
    const int32_t length = std::vswprintf(text, size, format, args);
    bounded::copy(dst, text, size);
    std::free(text);
    return length;
}

int32_t Y_snwprintf(wchar_t* dst, size_t size, const wchar_t* format, ...)
{
    va_list args;
    va_start(args, format);
    const int32_t length = Y_vsnwprintf(dst, size, format, args);
    va_end(args);
    return length;
}

size_t Y_strlcpy(char* dst, const char* src, size_t size)
{
    return bounded::copy(dst, src, size);
}

size_t Y_wcslcpy(wchar_t* dst, const wchar_t* src, size_t size)
{
    return bounded::copy(dst, src, size);
}

size_t Y_strlncpy(char* dst, const char* src, size_t count, size_t size)
{
    return bounded::copyPadded(dst, src, count, size);
}

size_t Y_wcslncpy(wchar_t* dst, const wchar_t* src, size_t count, size_t size)
{
    return bounded::copyPadded(dst, src, count, size);
}

size_t Y_strlcat(char* dst, const char* src, size_t size)
{
    return bounded::append(dst, src, size);
}

size_t Y_wcslcat(wchar_t* dst, const wchar_t* src, size_t size)
{
    return bounded::append(dst, src, size);
}

size_t Y_strlncat(char* dst, const char* src, size_t count, size_t size)
{
    return bounded::appendCounted(dst, src, count, size);
}

size_t Y_wcslncat(wchar_t* dst, const wchar_t* src, size_t count, size_t size)
{
    return bounded::appendCounted(dst, src, count, size);
}

int32_t Y_strverify(const char* buf, size_t size, size_t* length)
{
    return bounded::verify(buf, size, length);
}

int32_t Y_wstrverify(const wchar_t* buf, size_t size, size_t* length)
{
    return bounded::verify(buf, size, length);
}

void* Y_dumb_realloc(void** block, size_t size)
{
    if (block == nullptr)
        return nullptr;
    void* resized = std::realloc(*block, size);
    if (resized == nullptr && *block != nullptr && size != 0)
        std::free(*block);
    *block = resized;
    return resized;
}
