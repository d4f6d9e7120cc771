#include "doctor/findings.h"

namespace command {

void Findings::take(const Finding& finding)
{
    ++m_counts[finding.state];
    if (m_output == nullptr) {
        m_rows.push_back(findingRow(finding));
        return;
    }
    m_output->write(findingText(finding));
    m_output->flush();
}

} // namespace command
