#include "pdk/include/czestringtool.h"

#include <algorithm>
#include <string_view>

namespace {

char foldCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool contains(std::string_view line, std::string_view text, bool ignoreCase)
{
    if (!ignoreCase)
        return line.find(text) != std::string_view::npos;
    return std::search(line.begin(), line.end(), text.begin(), text.end(),
                       [](char a, char b) { return foldCase(a) == foldCase(b); }) != line.end() ||
           text.empty();
}

} // namespace

namespace koze_pdk_4_4 {

std::string CZeStringTool::tstr2str(const ACE_String_Base<char>& text)
{
    return {text.fast_rep(), text.length()};
}

ACE_String_Base<char> CZeStringTool::str2tstr(const std::string& text)
{
    return {text.data(), text.size()};
}

std::string CZeStringTool::trim(const std::string& text, const std::string& characters)
{
    const std::size_t first = text.find_first_not_of(characters);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

std::vector<std::string> CZeStringTool::tokenize(const std::string& text,
                                                 const std::string& delimiters)
{
    std::vector<std::string> pieces;
    std::size_t first = text.find_first_not_of(delimiters);
    while (first != std::string::npos) {
        const std::size_t end = text.find_first_of(delimiters, first);
        pieces.emplace_back(text, first, end - first);
        first = text.find_first_not_of(delimiters, end);
    }
    return pieces;
}

unsigned long CZeStringTool::find(const std::vector<std::string>& lines, const char* text,
                                  unsigned long& index, bool ignoreCase)
{
    for (unsigned long number = index; number < lines.size(); ++number) {
        if (contains(lines[number], text, ignoreCase)) {
            index = number;
            return number;
        }
    }
    return static_cast<unsigned long>(-1);
}

} // namespace koze_pdk_4_4
