#ifndef EXPLANATION_OUTPUT_H
#define EXPLANATION_OUTPUT_H

#include "output_stream.h"
#include "row_writer.h"

namespace command {

/// Writes explanations as text for people, with an empty line between them.
class ExplanationOutput : public RowWriter {
public:
    explicit ExplanationOutput(OutputStream& output) : m_output(output) {}
    void write(const Row& row) override;

private:
    void writeModules(const Row& modules);
    void writeAnswer(const Row& row);
    void writeField(const char* label, std::string_view text);

    OutputStream& m_output;
    bool m_isFirst = true;
};

} // namespace command

#endif
