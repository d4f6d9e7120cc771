#include "output/make_row_writer.h"

#include "output/bare_output.h"
#include "output/json_output.h"
#include "output/raw_output.h"
#include "output/table_output.h"

namespace command {

std::unique_ptr<RowWriter> makeRowWriter(Form form, OutputStream& output, const char* array,
                                         const std::vector<Heading>& headings, bool withHeadings)
{
    switch (form) {
    case Form::json:
        return std::make_unique<JsonOutput>(output, array, headings);
    case Form::raw:
        return std::make_unique<RawOutput>(output,
                                           withHeadings ? headings : std::vector<Heading>());
    case Form::bare:
        return std::make_unique<BareOutput>(output);
    default:
        return std::make_unique<TableOutput>(output, headings, withHeadings);
    }
}

} // namespace command
