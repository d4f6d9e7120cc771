#ifndef RAW_OUTPUT_H
#define RAW_OUTPUT_H

#include "output_stream.h"
#include "row_writer.h"

namespace command {

/// Writes rows for programs: fields with one blank between them, blanks within them escaped.
class RawOutput : public RowWriter {
public:
    RawOutput(OutputStream& output, std::vector<Column> columns, bool withHeadings);
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    std::vector<Column> m_columns;
};

} // namespace command

#endif
