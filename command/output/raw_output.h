#ifndef OUTPUT_RAW_OUTPUT_H
#define OUTPUT_RAW_OUTPUT_H

#include <vector>

#include "output/columns.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes rows for programs: words with one blank between them, so that every row has as many words
/// as there are columns.
///
///     word = "-"       for a field that the library gives no value
///          | '""'      for an empty text
///          | text      as printableWord writes it; a text - or "" is all \xNN
class RawOutput : public RowWriter {
public:
    /// Writes `headings` first.
    RawOutput(OutputStream& output, const std::vector<Heading>& headings);
    void write(const Row& row) override;

private:
    OutputStream& m_output;
};

} // namespace command

#endif
