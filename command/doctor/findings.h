#ifndef DOCTOR_FINDINGS_H
#define DOCTOR_FINDINGS_H

#include <vector>

#include "doctor/finding.h"
#include "doctor/finding_filter.h"
#include "doctor/finding_output.h"
#include "output/output_stream.h"

namespace command {

/// Counts the findings that pass a filter. Writes each at once as text or as a line of JSON, or
/// keeps all.
class Findings {
public:
    enum class Use { text, line, keep };

    Findings(FindingFilter filter, Use use, OutputStream& output)
        : m_filter(filter), m_use(use), m_output(output)
    {}

    void take(const Finding& finding);

    const FindingCounts& counts() const { return m_counts; }

    /// All of them, in order.
    const std::vector<Finding>& kept() const { return m_kept; }

private:
    FindingFilter m_filter;
    Use m_use;
    OutputStream& m_output;
    FindingCounts m_counts;
    std::vector<Finding> m_kept;
};

} // namespace command

#endif
