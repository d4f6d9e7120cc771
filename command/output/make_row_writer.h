#ifndef OUTPUT_MAKE_ROW_WRITER_H
#define OUTPUT_MAKE_ROW_WRITER_H

#include <memory>
#include <vector>

#include "output/columns.h"
#include "output/json_text.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// How answers look: an aligned table, words for programs, pairs for shells, one column without
/// headings with line ends or NULs, text for people, a JSON document, a line of JSON for each.
enum class Form { table, raw, pairs, bare, zero, text, json, jsonLines };

constexpr bool isJson(Form form)
{
    return form == Form::json || form == Form::jsonLines;
}

/// REQUIRES: `form` is one of JSON.
constexpr JsonText::Layout layoutOf(Form form)
{
    return form == Form::json ? JsonText::Layout::indented : JsonText::Layout::line;
}

/// The writer of rows with these columns. `array` names the rows in JSON. REQUIRES: `form` is not
/// Form::text, which has no rows.
std::unique_ptr<RowWriter> makeRowWriter(Form form, OutputStream& output, const char* array,
                                         const std::vector<Heading>& headings, bool withHeadings);

} // namespace command

#endif
