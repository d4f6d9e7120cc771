#ifndef TESTS_SUPPORT_HARMLESS_TEXT_H
#define TESTS_SUPPORT_HARMLESS_TEXT_H

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

// A second implementation of what is printable: byte by byte, as the Unicode standard tabulates
// well-formed UTF-8.

/// The ranges of the first and second byte of a character; the third and fourth are 80 to bf.
struct Utf8Form {
    unsigned char firstLead, lastLead, firstSecond, lastSecond;
    std::size_t size;
};

constexpr Utf8Form utf8Forms[] = {
    {0x00, 0x7f, 0, 0, 1},       {0xc2, 0xdf, 0x80, 0xbf, 2}, {0xe0, 0xe0, 0xa0, 0xbf, 3},
    {0xe1, 0xec, 0x80, 0xbf, 3}, {0xed, 0xed, 0x80, 0x9f, 3}, {0xee, 0xef, 0x80, 0xbf, 3},
    {0xf0, 0xf0, 0x90, 0xbf, 4}, {0xf1, 0xf3, 0x80, 0xbf, 4}, {0xf4, 0xf4, 0x80, 0x8f, 4},
};

/// Characters of the categories Cc, Cf, Zl and Zp: their bytes before the last, and its range.
struct ControlCharacters {
    std::string_view front;
    unsigned char firstLast, lastLast;
};

constexpr ControlCharacters controlCharacters[] = {
    {"", 0x00, 0x1f},
    {"", 0x7f, 0x7f},
    {"\xc2", 0x80, 0x9f},
    {"\xc2", 0xad, 0xad},
    {"\xd8", 0x80, 0x85},
    {"\xd8", 0x9c, 0x9c},
    {"\xdb", 0x9d, 0x9d},
    {"\xdc", 0x8f, 0x8f},
    {"\xe0\xa2", 0x90, 0x91},
    {"\xe0\xa3", 0xa2, 0xa2},
    {"\xe1\xa0", 0x8e, 0x8e},
    {"\xe2\x80", 0x8b, 0x8f},
    {"\xe2\x80", 0xa8, 0xae},
    {"\xe2\x81", 0xa0, 0xaf},
    {"\xef\xbb", 0xbf, 0xbf},
    {"\xef\xbf", 0xb9, 0xbb},
    {"\xf0\x91\x82", 0xbd, 0xbd},
    {"\xf0\x91\x83", 0x8d, 0x8d},
    {"\xf0\x93\x90", 0xb0, 0xbf},
    {"\xf0\x9b\xb2", 0xa0, 0xa3},
    {"\xf0\x9d\x85", 0xb3, 0xba},
    {"\xf3\xa0\x80", 0x80, 0xbf},
    {"\xf3\xa0\x81", 0x80, 0xbf},
};

/// The size of the character that `text` begins with; 0 when its bytes are not well-formed.
inline std::size_t wellFormedSize(std::string_view text)
{
    const auto isAt = [&](std::size_t i, unsigned char first, unsigned char last) {
        const auto byte = static_cast<unsigned char>(text[i]);
        return first <= byte && byte <= last;
    };
    for (const Utf8Form& form : utf8Forms) {
        if (!isAt(0, form.firstLead, form.lastLead) || text.size() < form.size)
            continue;
        bool isWellFormed = form.size < 2 || isAt(1, form.firstSecond, form.lastSecond);
        for (std::size_t i = 2; i < form.size; ++i)
            isWellFormed = isWellFormed && isAt(i, 0x80, 0xbf);
        return isWellFormed ? form.size : 0;
    }
    return 0;
}

inline bool isControl(std::string_view character)
{
    const std::string_view front = character.substr(0, character.size() - 1);
    const auto last = static_cast<unsigned char>(character.back());
    return std::any_of(std::begin(controlCharacters), std::end(controlCharacters),
                       [&](const ControlCharacters& range) {
                           return range.front == front && range.firstLast <= last &&
                                  last <= range.lastLast;
                       });
}

/// Whether `text` is UTF-8 without control characters.
inline bool isHarmless(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t size = wellFormedSize(text);
        if (size == 0 || isControl(text.substr(0, size)))
            return false;
        text.remove_prefix(size);
    }
    return true;
}

/// Whether `text` consists of that many complete lines, all of them harmless.
inline bool isHarmlessLines(std::string_view text, std::size_t count)
{
    for (; count > 0; --count) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos || !isHarmless(text.substr(0, end)))
            return false;
        text.remove_prefix(end + 1);
    }
    return text.empty();
}

#endif
