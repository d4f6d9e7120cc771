#include "pdk/include/czestringtool.h"

#include <algorithm>
#include <new>
#include <string_view>

namespace koze_pdk_4_4 {

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
    return text.empty() ||
           std::search(line.begin(), line.end(), text.begin(), text.end(),
                       [](char a, char b) { return foldCase(a) == foldCase(b); }) != line.end();
}

} // namespace

std::string CZeStringTool::tstr2str(const ACE_String_Base<char>& text)
{
    if (text.fast_rep() == nullptr)
        throw std::bad_alloc();
    return {text.fast_rep(), text.length()};
}

ACE_String_Base<char> CZeStringTool::str2tstr(const std::string& text)
{
    ACE_String_Base<char> converted(text.data(), text.size());
    if (converted.length() != text.size())
        throw std::bad_alloc();
    return converted;
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
    bool delimits[256] = {};
    for (const char delimiter : delimiters)
        delimits[static_cast<unsigned char>(delimiter)] = true;
    const auto isDelimiter = [&](char character) {
        return delimits[static_cast<unsigned char>(character)];
    };
    std::vector<std::string> pieces;
    auto first = std::find_if_not(text.begin(), text.end(), isDelimiter);
    while (first != text.end()) {
        const auto end = std::find_if(first, text.end(), isDelimiter);
        pieces.emplace_back(first, end);
        first = std::find_if_not(end, text.end(), isDelimiter);
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
