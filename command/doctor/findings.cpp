#include "doctor/findings.h"

namespace command {

void Findings::take(const Finding& finding)
{
    ++m_counts[finding.state];
    m_rows.push_back(findingRow(finding));
    if (m_output == nullptr)
        return;
    m_output->write(findingText(finding));
    m_output->flush();
}

} // namespace command
