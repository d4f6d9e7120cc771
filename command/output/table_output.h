#ifndef OUTPUT_TABLE_OUTPUT_H
#define OUTPUT_TABLE_OUTPUT_H

#include <cstddef>
#include <string>
#include <vector>

#include "output/columns.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes rows as an aligned table for people, headings first.
///
/// Rows go out in batches of 256, so that memory does not grow with their number. The first batch
/// settles the widths of the columns; a later batch only widens them. A row with a very long field
/// goes out as it is, so that it widens no other.
class TableOutput : public RowWriter {
public:
    TableOutput(OutputStream& output, const std::vector<Heading>& headings, bool withHeadings);
    void write(const Row& row) override;
    void flush() override { writeBatch(); }
    void finish() override { writeBatch(); }

private:
    struct Cell {
        std::string text;
        Tone tone;
        std::size_t width; // in cells of a terminal
    };

    void add(const std::vector<Cell>& cells);
    void writeBatch();
    void writeAlone(const std::vector<Cell>& cells);
    void appendCell(std::string& line, const Cell& cell, std::size_t column) const;

    OutputStream& m_output;
    std::vector<Kind> m_kinds;
    std::vector<std::size_t> m_widths;
    std::vector<Cell> m_batch; // row by row
};

} // namespace command

#endif
