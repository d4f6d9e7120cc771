#ifndef OUTPUT_BARE_OUTPUT_H
#define OUTPUT_BARE_OUTPUT_H

#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes the first field of each row, a line each; an empty line when there is none. Programs get
/// the field unaltered, a terminal gets it printable.
class BareOutput : public RowWriter {
public:
    explicit BareOutput(OutputStream& output) : m_output(output), m_isTerminal(output.isTerminal())
    {}
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    bool m_isTerminal;
};

} // namespace command

#endif
