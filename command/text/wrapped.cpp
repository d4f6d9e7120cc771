#include "text/wrapped.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <system_error>

#include <sys/ioctl.h>

#include "text/printable.h"

namespace command {

namespace {

/// Where the later lines of an item begin.
std::size_t indentOf(std::string_view item)
{
    const std::size_t word = std::min(item.find_first_not_of(' '), item.size());
    const std::size_t end = std::min(item.find(' ', word), item.size());
    const std::size_t next = std::min(item.find_first_not_of(' ', end), item.size());
    return next < item.size() && next > end + 1 ? next : word;
}

bool beginsWithBlank(std::string_view line)
{
    return !line.empty() && line.front() == ' ';
}

/// Takes the first line off the text, without its end.
std::string_view takeLine(std::string_view& text)
{
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::size_t widthOfEnvironment()
{
    const char* columns = std::getenv("COLUMNS");
    const std::string_view text = columns == nullptr ? "" : columns;
    std::size_t width = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), width);
    return result.ec == std::errc() && width > 0 ? width : usualWidth;
}

} // namespace

std::size_t lineWidth(int descriptor)
{
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : widthOfEnvironment();
}

std::string wrapped(std::string_view text, std::size_t indent, std::size_t width)
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
        if (column > indent && column + blanks + displayWidth(word) > width) {
            result += '\n' + std::string(indent, ' ');
            column = indent;
        } else {
            result.append(blanks, ' ');
            column += blanks;
        }
        result += word;
        column += displayWidth(word);
    }
    return result;
}

std::string reflowed(std::string_view text, std::size_t width)
{
    std::string result;
    while (!text.empty()) {
        std::string paragraph(takeLine(text));
        const std::size_t indent = beginsWithBlank(paragraph) ? indentOf(paragraph) : 0;
        const bool isPlain = !paragraph.empty() && indent == 0;
        while (isPlain && !text.empty() && text.front() != '\n' && !beginsWithBlank(text))
            (paragraph += ' ') += takeLine(text);
        result += paragraph.substr(0, indent);
        result += wrapped(std::string_view(paragraph).substr(indent), indent, width) + '\n';
    }
    return result;
}

} // namespace command
