#ifndef OUTPUT_TABLE_OUTPUT_H
#define OUTPUT_TABLE_OUTPUT_H

#include <memory>
#include <string>
#include <vector>

#include "output/columns.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

struct libscols_table;

namespace command {

/// Writes rows as an aligned table for people, headings first.
///
/// Rows go out in batches, so that memory does not grow with their number. Columns only get wider
/// from one batch to the next. A row with a very long field goes out as it is, so that it widens
/// no other.
class TableOutput : public RowWriter {
public:
    TableOutput(OutputStream& output, const std::vector<Heading>& headings, bool withHeadings);
    void write(const Row& row) override;
    void flush() override { writeBatch(); }
    void finish() override { writeBatch(); }

private:
    using Cells = std::vector<std::string>;

    void add(const Cells& cells);
    void writeBatch();
    void writeAlone(const Cells& cells);

    OutputStream& m_output;
    std::unique_ptr<libscols_table, void (*)(libscols_table*)> m_batch;
};

} // namespace command

#endif
