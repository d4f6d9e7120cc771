#include "output/table_output.h"

#include <algorithm>

#include "output/cell_text.h"
#include "output/painted.h"
#include "text/printable.h"

namespace command {

namespace {

constexpr std::size_t rowsPerBatch = 256;
constexpr std::size_t longestAlignedCell = 256; // bytes

} // namespace

TableOutput::TableOutput(OutputStream& output, const std::vector<Heading>& headings,
                         bool withHeadings)
    : m_output(output), m_widths(headings.size())
{
    std::vector<Cell> names;
    for (const Heading& heading : headings) {
        m_kinds.push_back(heading.kind);
        names.push_back({std::string(heading.name), Tone::heading, heading.name.size()});
    }
    if (withHeadings)
        add(names);
}

void TableOutput::write(const Row& row)
{
    std::vector<Cell> cells;
    cells.reserve(row.size());
    for (const Field& field : row) {
        std::string text = printable(cellText(field));
        const std::size_t width = displayWidth(text);
        cells.push_back({std::move(text), toneOf(field), width});
    }
    const auto isTooLong = [](const Cell& cell) { return cell.text.size() > longestAlignedCell; };
    if (std::any_of(cells.begin(), cells.end(), isTooLong)) {
        writeBatch();
        writeAlone(cells);
        return;
    }
    add(cells);
    if (m_batch.size() >= rowsPerBatch * m_widths.size())
        writeBatch();
}

void TableOutput::add(const std::vector<Cell>& cells)
{
    for (std::size_t column = 0; column < cells.size(); ++column)
        m_widths[column] = std::max(m_widths[column], cells[column].width);
    m_batch.insert(m_batch.end(), cells.begin(), cells.end());
}

void TableOutput::writeBatch()
{
    std::string lines;
    for (std::size_t cell = 0; cell < m_batch.size(); ++cell)
        appendCell(lines, m_batch[cell], cell % m_widths.size());
    m_batch.clear();
    m_output.write(lines);
}

void TableOutput::appendCell(std::string& line, const Cell& cell, std::size_t column) const
{
    const bool isLast = column + 1 == m_widths.size();
    const std::size_t blanks = m_widths[column] - cell.width;
    if (m_kinds[column] == Kind::number)
        line.append(blanks, ' ');
    line += painted(cell.text, cell.tone, m_output);
    if (m_kinds[column] == Kind::text && !isLast)
        line.append(blanks, ' ');
    line += isLast ? '\n' : ' ';
}

void TableOutput::writeAlone(const std::vector<Cell>& cells)
{
    std::string line;
    for (const Cell& cell : cells)
        line += painted(cell.text, cell.tone, m_output) + ' ';
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command
