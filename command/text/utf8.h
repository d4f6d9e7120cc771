#ifndef TEXT_UTF8_H
#define TEXT_UTF8_H

#include <cstddef>
#include <string_view>

namespace command {

/// A character of a text.
struct Utf8Character {
    static constexpr char32_t replacement = 0xfffd;

    char32_t code; // `replacement` for bytes that are not UTF-8
    std::size_t size;
    bool isValid;
};

/// The first character of `text`, which is not empty. Bytes that are not UTF-8 count as one invalid
/// character as long as they begin a valid one:  E2 82 41  is an invalid character and "A".
Utf8Character firstUtf8Character(std::string_view text);

bool isUtf8(std::string_view text);

} // namespace command

#endif
