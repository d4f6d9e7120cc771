#include "doctor/findings.h"

namespace command {

void Findings::take(const Finding& finding)
{
    ++m_counts[finding.state];
    if (m_output == nullptr) {
        m_documents.push_back(findingDocument(finding));
        return;
    }
    m_output->write(findingText(finding));
    m_output->flush();
}

} // namespace command
