#include "raw_output.h"

#include "printable.h"

namespace command {

RawOutput::RawOutput(OutputStream& output, std::vector<Column> columns, bool withHeadings)
    : m_output(output), m_columns(std::move(columns))
{
    if (!withHeadings)
        return;
    Row row;
    for (const Column& column : m_columns)
        row[column.key] = column.heading;
    RawOutput::write(row);
}

void RawOutput::write(const Row& row)
{
    std::string line;
    for (const Column& column : m_columns)
        line += printableWord(cellText(row, column)) + ' ';
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command
