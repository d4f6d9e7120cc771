#include "output/table_output.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <libsmartcols/libsmartcols.h>

#include "output/cell_text.h"
#include "text/printable.h"

namespace command {

namespace {

constexpr std::size_t rowsPerBatch = 256;
constexpr std::size_t longestAlignedCell = 256; // bytes

/// The table library fails only when memory is exhausted.
void require(bool success)
{
    if (!success)
        throw std::bad_alloc();
}

bool isTooLong(const std::string& cell)
{
    return cell.size() > longestAlignedCell;
}

/// Cells are printable, so the library must not encode them. Without a terminal it never cuts
/// them to its width.
void prepare(libscols_table* table)
{
    require(table != nullptr);
    require(scols_table_enable_noheadings(table, 1) == 0);
    require(scols_table_enable_noencoding(table, 1) == 0);
    require(scols_table_set_termforce(table, SCOLS_TERMFORCE_NEVER) == 0);
}

/// The headings are the first row: a column with a heading of its own would ignore the width that
/// keepWidths sets.
void addColumn(libscols_table* table, Kind kind)
{
    const int flags = SCOLS_FL_STRICTWIDTH | (kind == Kind::number ? SCOLS_FL_RIGHT : 0);
    require(scols_table_new_column(table, "", 0, flags) != nullptr);
}

/// Makes the widths so far the least widths of the next batch.
void keepWidths(libscols_table* table)
{
    for (std::size_t i = 0; i < scols_table_get_ncols(table); ++i) {
        libscols_column* column = scols_table_get_column(table, i);
        const auto width = static_cast<double>(scols_column_get_width(column));
        require(scols_column_set_whint(column, width) == 0);
    }
}

} // namespace

TableOutput::TableOutput(OutputStream& output, const std::vector<Heading>& headings,
                         bool withHeadings)
    : m_output(output), m_batch(scols_new_table(), scols_unref_table)
{
    prepare(m_batch.get());
    Cells names;
    for (const Heading& heading : headings) {
        addColumn(m_batch.get(), heading.kind);
        names.emplace_back(heading.name);
    }
    if (withHeadings)
        add(names);
}

void TableOutput::write(const Row& row)
{
    Cells cells;
    for (const Field& field : row)
        cells.push_back(printable(cellText(field)));
    if (std::any_of(cells.begin(), cells.end(), isTooLong)) {
        writeBatch();
        writeAlone(cells);
        return;
    }
    add(cells);
    if (scols_table_get_nlines(m_batch.get()) == rowsPerBatch)
        writeBatch();
}

void TableOutput::add(const Cells& cells)
{
    libscols_line* line = scols_table_new_line(m_batch.get(), nullptr);
    require(line != nullptr);
    for (std::size_t i = 0; i < cells.size(); ++i)
        require(scols_line_set_data(line, i, cells[i].c_str()) == 0);
}

void TableOutput::writeBatch()
{
    if (scols_table_get_nlines(m_batch.get()) == 0)
        return;
    char* lines = nullptr;
    require(scols_print_table_to_string(m_batch.get(), &lines) == 0);
    const std::unique_ptr<char, void (*)(void*)> owned(lines, std::free);
    m_output.write(lines);
    m_output.write("\n");
    keepWidths(m_batch.get());
    scols_table_remove_lines(m_batch.get());
}

void TableOutput::writeAlone(const Cells& cells)
{
    std::string line;
    for (const std::string& cell : cells)
        line += cell + ' ';
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command
