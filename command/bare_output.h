#ifndef BARE_OUTPUT_H
#define BARE_OUTPUT_H

#include "output_stream.h"
#include "row_writer.h"

namespace command {

/// Writes one field of each row, a line each; an empty line for null. Programs get the field
/// unaltered, a terminal gets it printable.
class BareOutput : public RowWriter {
public:
    BareOutput(OutputStream& output, Column column)
        : m_output(output), m_isTerminal(output.isTerminal()), m_column(column)
    {}
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    bool m_isTerminal;
    Column m_column;
};

} // namespace command

#endif
