#include <algorithm>
#include <cstring>

#include "pdk/include/czestringtool.h"

namespace koze_pdk_4_4 {

std::string CZeStringTool::tstr2str(const ACE_String_Base<char>& text)
{
    return {text.c_str(), text.length()};
}

ACE_String_Base<char> CZeStringTool::str2tstr(const std::string& text)
{
    return {text.data(), text.size()};
}

std::string CZeStringTool::trim(const std::string& text, const std::string& characters)
{
    const std::size_t begin = text.find_first_not_of(characters);
    const std::size_t last = text.find_last_not_of(characters);
    return begin == std::string::npos ? std::string() : text.substr(begin, last - begin + 1);
}

std::vector<std::string> CZeStringTool::tokenize(const std::string& text,
                                                 const std::string& delimiters)
{
    std::vector<std::string> tokens;
    std::size_t begin = text.find_first_not_of(delimiters);
    while (begin != std::string::npos) {
        const std::size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
        tokens.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(delimiters, end);
    }
    return tokens;
}

unsigned long CZeStringTool::find(const std::vector<std::string>& lines, const char* text,
                                  unsigned long& index, bool ignoreCase)
{
    for (unsigned long line = index; line < lines.size(); ++line) {
        const char* found = ignoreCase ? strcasestr(lines[line].c_str(), text)
                                       : std::strstr(lines[line].c_str(), text);
        if (found != nullptr)
            return index = line;
    }
    return ~0UL;
}

} // namespace koze_pdk_4_4
