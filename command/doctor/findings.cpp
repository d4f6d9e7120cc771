#include "doctor/findings.h"

#include "output/json_text.h"

namespace command {

void Findings::take(const Finding& finding)
{
    if (!m_filter.passes(finding.code))
        return;
    ++m_counts[finding.severity()];
    if (m_use == Use::keep) {
        m_kept.push_back(finding);
        return;
    }
    m_output.write(m_use == Use::text ? findingText(finding, m_output)
                                      : jsonLine(findingDocument(finding)));
    m_output.flush();
}

} // namespace command
