#ifndef CZEPRINTABLE_H
#define CZEPRINTABLE_H

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace koze_pdk_4_4 {

/// Whether a character can steer a terminal, end a line, or hide or reorder the text beside it:
/// Unicode's categories Cc, Cf, Zl and Zp. Names and tools' answers may hold such characters, and
/// no output for people lets them through.
inline bool isControlCharacter(char32_t character)
{
    struct Range {
        char32_t first;
        char32_t last;
    };
    constexpr Range ranges[] = {
        {0x0000, 0x001f},   {0x007f, 0x009f},   {0x00ad, 0x00ad},   {0x0600, 0x0605},
        {0x061c, 0x061c},   {0x06dd, 0x06dd},   {0x070f, 0x070f},   {0x0890, 0x0891},
        {0x08e2, 0x08e2},   {0x180e, 0x180e},   {0x200b, 0x200f},   {0x2028, 0x202e},
        {0x2060, 0x206f},   {0xfeff, 0xfeff},   {0xfff9, 0xfffb},   {0x110bd, 0x110bd},
        {0x110cd, 0x110cd}, {0x13430, 0x1343f}, {0x1bca0, 0x1bca3}, {0x1d173, 0x1d17a},
        {0xe0000, 0xe007f},
    };
    return std::any_of(std::begin(ranges), std::end(ranges), [&](const Range& range) {
        return range.first <= character && character <= range.last;
    });
}

/// Appends each byte as a backslash, an x and two hexadecimal digits.
inline void appendEscaped(std::string& text, std::string_view bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        (text += "\\x").append({digits[byte >> 4], digits[byte & 0xf]});
    }
}

} // namespace koze_pdk_4_4

#endif
