#ifndef OUTPUT_BARE_OUTPUT_H
#define OUTPUT_BARE_OUTPUT_H

#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes the first field of each row, with `end` behind it; only `end` when there is none.
/// Programs get the field unaltered, a terminal gets it printable.
class BareOutput : public RowWriter {
public:
    BareOutput(OutputStream& output, char end)
        : m_output(output), m_isTerminal(output.isTerminal()), m_end(end)
    {}
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    bool m_isTerminal;
    char m_end;
};

} // namespace command

#endif
