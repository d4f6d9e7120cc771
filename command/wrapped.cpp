#include "wrapped.h"

#include <algorithm>

namespace {

constexpr std::size_t lineWidth = 79;

} // namespace

namespace command {

std::string wrapped(std::string_view text, std::size_t indent)
{
    std::string result;
    std::size_t column = indent;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, std::min(text.find(' '), text.size()));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (column > indent && column + 1 + word.size() > lineWidth) {
            result += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (column > indent) {
            result += ' ';
            ++column;
        }
        result += word;
        column += word.size();
    }
    return result;
}

} // namespace command
