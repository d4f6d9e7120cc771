#include "text/wrapped.h"

#include <algorithm>

namespace command {

namespace {

constexpr std::size_t lineWidth = 79;

} // namespace

std::string wrapped(std::string_view text, std::size_t indent)
{
    std::string result;
    std::size_t column = indent;
    while (!text.empty()) {
        const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
        text.remove_prefix(blanks);
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(word.size());
        if (word.empty())
            break;
        if (column > indent && column + blanks + word.size() > lineWidth) {
            result += '\n' + std::string(indent, ' ');
            column = indent;
        } else {
            result.append(blanks, ' ');
            column += blanks;
        }
        result += word;
        column += word.size();
    }
    return result;
}

} // namespace command
