#ifndef JSON_OUTPUT_H
#define JSON_OUTPUT_H

#include <string>

#include "output_stream.h"
#include "row_writer.h"

namespace command {

/// The document as text, with its line end, in ASCII: other characters become \uNNNN, so that none
/// steers a terminal. Bytes that are not UTF-8 become U+FFFD.
std::string jsonText(const Row& document);

/// Writes all rows as one document when the last has come:
///
///     { "schema": 1, ARRAY: [ { KEY: FIELD, ... }, ... ] }
class JsonOutput : public RowWriter {
public:
    /// Writes the fields of `columns`, or whole rows when there are none.
    JsonOutput(OutputStream& output, const char* array, std::vector<Column> columns);
    void write(const Row& row) override;
    void finish() override;

private:
    OutputStream& m_output;
    const char* m_array;
    std::vector<Column> m_columns;
    nlohmann::ordered_json m_document;
};

} // namespace command

#endif
