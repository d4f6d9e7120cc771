#include "tables.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::size_t gap = 4;

std::vector<std::size_t> columnWidths(const Row& header, const std::vector<Row>& rows)
{
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < header.size(); ++column) {
        std::size_t width = header[column].size();
        for (const Row& row : rows)
            width = std::max(width, row[column].size());
        widths.push_back(width + gap);
    }
    return widths;
}

std::string tableLine(const Row& row, const std::vector<std::size_t>& widths)
{
    std::string line;
    std::size_t start = 0;
    for (std::size_t column = 0; column < row.size(); ++column) {
        line.resize(start, ' ');
        line += row[column];
        start += widths[column];
    }
    return line;
}

} // namespace

std::vector<std::string> tableLines(const Row& header, const std::vector<Row>& rows)
{
    const std::vector<std::size_t> widths = columnWidths(header, rows);
    std::vector<std::string> lines{tableLine(header, widths), ""};
    for (const Row& row : rows)
        lines.push_back(tableLine(row, widths));
    const auto longest =
        std::max_element(lines.begin(), lines.end(),
                         [](const auto& a, const auto& b) { return a.size() < b.size(); });
    lines[1].assign(longest->size(), '=');
    return lines;
}

} // namespace simulator
