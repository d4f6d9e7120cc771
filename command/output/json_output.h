#ifndef OUTPUT_JSON_OUTPUT_H
#define OUTPUT_JSON_OUTPUT_H

#include <string>
#include <vector>

#include "output/columns.h"
#include "output/document.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// The document as text, with its line end, in ASCII: other characters become \uNNNN, so that none
/// steers a terminal. Bytes that are not UTF-8 become U+FFFD.
std::string jsonText(const Document& document);

/// Writes all rows as one document when the last has come:
///
///     { "schema": 1, ARRAY: [ { KEY: FIELD, ... }, ... ] }
class JsonOutput : public RowWriter {
public:
    JsonOutput(OutputStream& output, const char* array, const std::vector<Heading>& headings);

    /// A row becomes a record with the headings' keys.
    void write(const Row& row) override;

    /// Writes a record that is no row.
    void write(const Document::Record& record) { m_records.emplace_back(record); }

    void finish() override;

private:
    OutputStream& m_output;
    const char* m_array;
    std::vector<std::string> m_keys;
    Document::List m_records;
};

} // namespace command

#endif
