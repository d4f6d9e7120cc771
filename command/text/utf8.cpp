#include "text/utf8.h"

#include <algorithm>

namespace command {

namespace {

/// How a character begins:  a lead byte, and the range of the second byte. The others are 80 to BF.
struct Beginning {
    std::size_t size = 0; // of the whole character; 0 when the byte begins none
    unsigned char least = 0x80;
    unsigned char most = 0xbf;
};

/// No character is written with more bytes than needed, is half of a surrogate pair or lies above
/// U+10FFFF.
Beginning beginningWith(unsigned char lead)
{
    if (lead < 0xc2 || lead > 0xf4)
        return {};
    if (lead < 0xe0)
        return {2};
    if (lead < 0xf0)
        return {3, static_cast<unsigned char>(lead == 0xe0 ? 0xa0 : 0x80),
                static_cast<unsigned char>(lead == 0xed ? 0x9f : 0xbf)};
    return {4, static_cast<unsigned char>(lead == 0xf0 ? 0x90 : 0x80),
            static_cast<unsigned char>(lead == 0xf4 ? 0x8f : 0xbf)};
}

bool isAscii(char character)
{
    return static_cast<unsigned char>(character) < 0x80;
}

} // namespace

Utf8Character firstUtf8Character(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (isAscii(text.front()))
        return {lead, 1, true};
    const Beginning beginning = beginningWith(lead);
    unsigned char least = beginning.least;
    unsigned char most = beginning.most;
    char32_t code = lead & (0x7fU >> beginning.size);
    std::size_t size = 1;
    for (; size < std::min(beginning.size, text.size()); ++size) {
        const auto byte = static_cast<unsigned char>(text[size]);
        if (byte < least || byte > most)
            break;
        code = code << 6 | (byte & 0x3fU);
        least = 0x80;
        most = 0xbf;
    }
    const bool isValid = size == beginning.size;
    return {isValid ? code : Utf8Character::replacement, size, isValid};
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const Utf8Character character = firstUtf8Character(text);
        if (!character.isValid)
            return false;
        text.remove_prefix(character.size);
    }
    return true;
}

} // namespace command
