#ifndef DOCTOR_FINDING_OUTPUT_H
#define DOCTOR_FINDING_OUTPUT_H

#include <map>
#include <string>

#include "doctor/finding.h"
#include "output/document.h"

namespace command {

/// "ok", "note", "warning" or "error".
const char* stateName(Finding::State state);

/// The finding for people, with its line ends.
std::string findingText(const Finding& finding);

/// state, subject, text, and the remedy as advice, which is null when there is none.
Document findingDocument(const Finding& finding);

/// How many findings there are of each state.
using FindingCounts = std::map<Finding::State, std::size_t>;

/// The last line for people: "Nothing is wrong." or "1 error, 2 warnings".
std::string summary(const FindingCounts& counts);

} // namespace command

#endif
