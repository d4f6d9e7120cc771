#ifndef OUTPUT_JSON_OUTPUT_H
#define OUTPUT_JSON_OUTPUT_H

#include <string>
#include <vector>

#include "output/columns.h"
#include "output/document.h"
#include "output/json_text.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes rows as one document, each row at once, so that memory does not grow with their number:
///
///     { "schema": 1, ARRAY: [ { KEY: FIELD, ... }, ... ] }
///
/// With Layout::line there is no document, but a line for each row:
///
///     { KEY: FIELD, ... }
///
/// A document that is cut short gets the member "interrupted": true behind the array.
class JsonOutput : public RowWriter {
public:
    JsonOutput(OutputStream& output, const char* array, const std::vector<Heading>& headings,
               JsonText::Layout layout = JsonText::Layout::indented);

    /// A row becomes a record with the headings' keys.
    void write(const Row& row) override;

    /// Writes a record that is no row.
    void write(const Document::Record& record);

    void finish() override;

private:
    void writeElement();

    OutputStream& m_output;
    JsonText m_text;
    bool m_isDocument;
    bool m_hasRows = false;
    std::vector<std::string> m_keys;
};

} // namespace command

#endif
