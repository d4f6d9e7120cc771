#ifndef DOCTOR_FINDINGS_H
#define DOCTOR_FINDINGS_H

#include "doctor/finding.h"
#include "doctor/finding_output.h"
#include "output_stream.h"
#include "row.h"

namespace command {

/// Takes the findings: as text they are written at once, for JSON they are kept.
class Findings {
public:
    /// `output` is null for JSON.
    explicit Findings(OutputStream* output) : m_output(output) {}

    void take(const Finding& finding);

    const FindingCounts& counts() const { return m_counts; }

    /// For JSON a findingRow for each, in order.
    const Row& rows() const { return m_rows; }

private:
    OutputStream* m_output;
    FindingCounts m_counts;
    Row m_rows = Row::array();
};

} // namespace command

#endif
