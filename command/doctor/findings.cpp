#include "doctor/findings.h"

namespace command {

void Findings::take(const Finding& finding)
{
    if (!m_filter.passes(finding.code))
        return;
    ++m_counts[finding.severity()];
    if (m_output == nullptr) {
        m_kept.push_back(finding);
        return;
    }
    m_output->write(findingText(finding));
    m_output->flush();
}

} // namespace command
