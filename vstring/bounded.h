#ifndef BOUNDED_H
#define BOUNDED_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

// The copy, append and check functions of Y_strings.h, written once for narrow and wide characters.
// That header says what they do.
namespace bounded {

/// Returns the number of characters before the terminator of `text`; `limit` when there is none
/// among the first `limit` characters, which are all that is read.
inline std::size_t measure(const char* text, std::size_t limit)
{
    return ::strnlen(text, limit);
}

inline std::size_t measure(const wchar_t* text, std::size_t limit)
{
    return ::wcsnlen(text, limit);
}

inline bool usable(const void* dst, const void* src, std::size_t size)
{
    return size != 0 && src != nullptr && dst != nullptr;
}

template <class Char>
std::size_t copy(Char* dst, const Char* src, std::size_t size)
{
    if (!usable(dst, src, size))
        return 0;
    const std::size_t length = measure(src, size - 1);
    std::char_traits<Char>::copy(dst, src, length);
    dst[length] = Char();
    return length;
}

template <class Char>
std::size_t copyPadded(Char* dst, const Char* src, std::size_t count, std::size_t size)
{
    if (!usable(dst, src, size))
        return 0;
    const std::size_t limit = std::min(count, size - 1);
    const std::size_t length = measure(src, limit);
    std::char_traits<Char>::copy(dst, src, length);
    std::char_traits<Char>::assign(dst + length, limit - length + 1, Char());
    return limit;
}

/// Compares differences only: with a count of SIZE_MAX a sum would overflow.
template <class Char>
std::size_t appendCounted(Char* dst, const Char* src, std::size_t count, std::size_t size)
{
    const std::size_t length = measure(dst, size);
    if (length == size)
        return 0;
    const std::size_t room = std::min(count, size - length - 1);
    return room == 0 ? 0 : copy(dst + length, src, room + 1);
}

template <class Char>
std::size_t append(Char* dst, const Char* src, std::size_t size)
{
    return usable(dst, src, size) ? appendCounted(dst, src, size, size) : 0;
}

template <class Char>
std::int32_t verify(const Char* text, std::size_t size, std::size_t* length)
{
    const std::size_t end = text == nullptr ? size : measure(text, size);
    const bool terminated = end < size;
    if (length != nullptr)
        *length = terminated ? end : 0;
    return terminated ? 0 : -1;
}

} // namespace bounded

#endif
