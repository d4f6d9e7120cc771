#include "text/printable.h"

#include <cwchar>

#include "pdk/include/czeprintable.h"

namespace command {

using koze_pdk_4_4::appendEscaped;

namespace {

struct Character {
    std::size_t size;
    bool isPrintable;
};

/// The first character of `text`; an invalid byte counts as one. Characters without a width of
/// their own count as unprintable, because they change how others look.
Character firstCharacter(std::string_view text)
{
    std::mbstate_t state{};
    wchar_t character = 0;
    const std::size_t size = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (size == 0 || size > text.size())
        return {1, false};
    const bool isControl = koze_pdk_4_4::isControlCharacter(static_cast<char32_t>(character));
    return {size, !isControl && wcwidth(character) > 0};
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.size);
        if (character.isPrintable && text.substr(0, 2) != "\\x")
            result += bytes;
        else
            appendEscaped(result, bytes);
        text.remove_prefix(character.size);
    }
    return result;
}

std::string printableWord(std::string_view text)
{
    std::string result;
    for (const char& character : text) {
        if (character > ' ' && character < '\x7f' && character != '\\')
            result += character;
        else
            appendEscaped(result, {&character, 1});
    }
    return result;
}

} // namespace command
