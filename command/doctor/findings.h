#ifndef DOCTOR_FINDINGS_H
#define DOCTOR_FINDINGS_H

#include "doctor/finding.h"
#include "doctor/finding_output.h"
#include "output/document.h"
#include "output/output_stream.h"

namespace command {

/// Counts findings. Writes each at once as text, or keeps all for JSON.
class Findings {
public:
    /// `output` is null for JSON.
    explicit Findings(OutputStream* output) : m_output(output) {}

    void take(const Finding& finding);

    const FindingCounts& counts() const { return m_counts; }

    /// All of them for JSON, in order.
    const Document::List& documents() const { return m_documents; }

private:
    OutputStream* m_output;
    FindingCounts m_counts;
    Document::List m_documents;
};

} // namespace command

#endif
