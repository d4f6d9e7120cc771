#ifndef DOCTOR_FINDING_OUTPUT_H
#define DOCTOR_FINDING_OUTPUT_H

#include <map>
#include <string>

#include "doctor/finding.h"
#include "output/document.h"
#include "output/output_stream.h"

namespace command {

/// The finding for people, with its line ends, in the width and the colours of `output`.
std::string findingText(const Finding& finding, const OutputStream& output);

/// code, severity, device, text, advice and remedy, which are null when there is none.
Document findingDocument(const Finding& finding);

/// How many findings there are of each severity.
using FindingCounts = std::map<Severity, std::size_t>;

std::size_t countOf(const FindingCounts& counts, Severity severity);

/// The last line for people: "Nothing is wrong." or "1 error, 2 warnings".
std::string summary(const FindingCounts& counts);

} // namespace command

#endif
