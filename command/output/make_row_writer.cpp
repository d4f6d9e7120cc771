#include "output/make_row_writer.h"

#include "output/bare_output.h"
#include "output/json_output.h"
#include "output/pairs_output.h"
#include "output/raw_output.h"
#include "output/table_output.h"

namespace command {

std::unique_ptr<RowWriter> makeRowWriter(Form form, OutputStream& output, const char* array,
                                         const std::vector<Heading>& headings, bool withHeadings)
{
    switch (form) {
    case Form::json:
    case Form::jsonLines:
        return std::make_unique<JsonOutput>(output, array, headings, layoutOf(form));
    case Form::raw:
        return std::make_unique<RawOutput>(output,
                                           withHeadings ? headings : std::vector<Heading>());
    case Form::pairs:
        return std::make_unique<PairsOutput>(output, headings);
    case Form::bare:
        return std::make_unique<BareOutput>(output, '\n');
    case Form::zero:
        return std::make_unique<BareOutput>(output, '\0');
    default:
        return std::make_unique<TableOutput>(output, headings, withHeadings);
    }
}

} // namespace command
