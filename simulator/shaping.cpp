#include "shaping.h"

namespace simulator {

namespace {

/// Puts `separator` in place of each run of spaces.
std::string separatedBy(const std::string& separator, const std::string& line)
{
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != ' ')
            text += line[i];
        else if (i == 0 || line[i - 1] != ' ')
            text += separator;
    }
    return text;
}

void removeLine(std::vector<std::string>& lines, std::size_t index)
{
    if (index < lines.size())
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(index));
}

/// A blank line before each row.
void addBlankLines(std::vector<std::string>& lines)
{
    std::vector<std::string> spread;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i >= 2)
            spread.emplace_back();
        spread.push_back(lines[i]);
    }
    lines = spread;
}

} // namespace

std::string shapedText(std::vector<std::string> lines, const Shape& shape)
{
    if (!shape.separator.empty()) {
        for (std::string& line : lines)
            line = separatedBy(shape.separator, line);
    }
    if (shape.blankLines)
        addBlankLines(lines);
    if (shape.noRule)
        removeLine(lines, 1);
    if (shape.noHeader)
        removeLine(lines, 0);
    if (!shape.note.empty())
        lines.insert(lines.begin(), shape.note);
    std::string text;
    for (const std::string& line : lines)
        text += line + (shape.crlf ? "\r\n" : "\n");
    return shape.cut ? text.substr(0, *shape.cut) : text;
}

} // namespace simulator
