#include "text/printable.h"

#include <algorithm>
#include <cwchar>

#include "pdk/include/czeprintable.h"

namespace command {

using koze_pdk_4_4::appendEscaped;

namespace {

struct Character {
    std::size_t size;
    std::size_t width; // in cells of a terminal; 0 for one that is not printable
};

bool isPrintableAscii(char character)
{
    return character >= ' ' && character <= '~';
}

/// The first character of `text`; an invalid byte counts as one. Characters without a width of
/// their own count as unprintable, because they change how others look.
Character firstCharacter(std::string_view text)
{
    if (isPrintableAscii(text.front()))
        return {1, 1};
    std::mbstate_t state{};
    wchar_t character = 0;
    const std::size_t size = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (size == 0 || size > text.size())
        return {1, 0};
    const bool isControl = koze_pdk_4_4::isControlCharacter(static_cast<char32_t>(character));
    const int width = isControl ? 0 : wcwidth(character);
    return {size, static_cast<std::size_t>(std::max(width, 0))};
}

/// Escapes each byte that is not printable ASCII, or one of `special`.
std::string escapedAscii(std::string_view text, std::string_view special)
{
    const auto isSpecial = [&](char character) {
        return std::find(special.begin(), special.end(), character) != special.end();
    };
    std::string result;
    result.reserve(text.size());
    for (const char& character : text) {
        if (isPrintableAscii(character) && !isSpecial(character))
            result += character;
        else
            appendEscaped(result, {&character, 1});
    }
    return result;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.size);
        if (character.width > 0 && text.substr(0, 2) != "\\x")
            result += bytes;
        else
            appendEscaped(result, bytes);
        text.remove_prefix(character.size);
    }
    return result;
}

std::size_t displayWidth(std::string_view text)
{
    std::size_t width = 0;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        width += character.width;
        text.remove_prefix(character.size);
    }
    return width;
}

std::string printableWord(std::string_view text)
{
    return escapedAscii(text, " \\");
}

std::string printableQuoted(std::string_view text)
{
    return escapedAscii(text, R"("$`!\)");
}

} // namespace command
