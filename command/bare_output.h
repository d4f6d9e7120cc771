#ifndef BARE_OUTPUT_H
#define BARE_OUTPUT_H

#include "output_stream.h"
#include "row_writer.h"

namespace command {

/// Writes one field of each row, unaltered, a line each; an empty line for null.
class BareOutput : public RowWriter {
public:
    BareOutput(OutputStream& output, Column column) : m_output(output), m_column(column) {}
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    Column m_column;
};

} // namespace command

#endif
