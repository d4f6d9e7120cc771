#include "printable_text.h"

#include <algorithm>

#include "pdk/include/czeprintable.h"

namespace {

struct Character {
    std::size_t size;
    bool isPrintable;
};

/// The size of the UTF-8 sequence that begins with `lead`; 0 for a continuation byte.
std::size_t encodedSize(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xc0)
        return 0;
    return lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
}

/// Whether `code` is a character whose shortest encoding has `size` bytes.
bool isEncodedBy(std::size_t size, char32_t code)
{
    constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    return code >= least[size - 1] && code <= 0x10ffff && !isSurrogate;
}

/// The first character of `text`. A byte that begins no valid sequence counts as one, unprintable.
Character firstCharacter(std::string_view text)
{
    constexpr Character loneByte{1, false};
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = encodedSize(lead);
    if (size == 0 || size > text.size())
        return loneByte;
    char32_t code = lead & (0xffU >> size);
    for (const char next : text.substr(1, size - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xc0) != 0x80)
            return loneByte;
        code = code << 6 | (byte & 0x3fU);
    }
    if (!isEncodedBy(size, code))
        return loneByte;
    return {size, !koze_pdk_4_4::isControlCharacter(code)};
}

/// The number of printable ASCII characters that `text` begins with. Most texts have no others, and
/// these are appended at once.
std::size_t plainSize(std::string_view text)
{
    const auto* const end = std::find_if_not(text.begin(), text.end(),
                                             [](char byte) { return byte >= ' ' && byte <= '~'; });
    return static_cast<std::size_t>(end - text.begin());
}

} // namespace

void appendPrintable(std::string& line, std::string_view text)
{
    for (;;) {
        const std::size_t plain = plainSize(text);
        line += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            return;
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.size);
        if (character.isPrintable)
            line += bytes;
        else
            koze_pdk_4_4::appendEscaped(line, bytes);
        text.remove_prefix(character.size);
    }
}
