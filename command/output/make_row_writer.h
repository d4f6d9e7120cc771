#ifndef OUTPUT_MAKE_ROW_WRITER_H
#define OUTPUT_MAKE_ROW_WRITER_H

#include <memory>
#include <vector>

#include "output/columns.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// How answers look: an aligned table, words for programs, one column without headings, text for
/// people, JSON.
enum class Form { table, raw, bare, text, json };

/// The writer of rows with these columns. `array` names the rows in JSON. REQUIRES: `form` is not
/// Form::text, which has no rows.
std::unique_ptr<RowWriter> makeRowWriter(Form form, OutputStream& output, const char* array,
                                         const std::vector<Heading>& headings, bool withHeadings);

} // namespace command

#endif
