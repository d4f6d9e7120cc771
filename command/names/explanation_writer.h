#ifndef NAMES_EXPLANATION_WRITER_H
#define NAMES_EXPLANATION_WRITER_H

#include <optional>

#include "names/explanation.h"
#include "output/json_output.h"
#include "output/make_row_writer.h"
#include "output/output_stream.h"

namespace command {

/// Writes explanations as text for people, with an empty line between them, or as JSON. Throws what
/// OutputStream throws.
class ExplanationWriter {
public:
    /// `form` is Form::text or one of JSON.
    ExplanationWriter(Form form, OutputStream& output) : m_output(output)
    {
        if (isJson(form))
            m_json.emplace(output, "explanations", std::vector<Heading>(), layoutOf(form));
    }

    void write(const Explanation& explanation);

    /// Called once, after the last explanation.
    void finish();

private:
    bool m_isFirst = true;
    OutputStream& m_output;
    std::optional<JsonOutput> m_json;
};

} // namespace command

#endif
