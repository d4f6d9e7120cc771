#ifndef ACTIVE_OUTCOME_H
#define ACTIVE_OUTCOME_H

#include <string>
#include <vector>

#include "output/field.h"

namespace command {

/// How a lookup ended, and why.
struct Outcome {
    enum class Code {
        confirmed,
        noPath,
        noTable,
        toolFailed,
        notFound,
        notInstalled,
        notAsked,
        notClaimed,
        timedOut
    };

    Code code = Code::notClaimed;
    std::string reason;

    /// Whether the active path is what the volume manager says, or needs no volume manager.
    bool isGood() const { return code == Code::confirmed || code == Code::notAsked; }
};

/// A code for users.
struct OutcomeCode {
    Outcome::Code code;
    Mark mark; // its word, such as "no-path"
    const char* meaning;
};

/// Every code, in the order in which help lists them.
const std::vector<OutcomeCode>& outcomeCodes();

Mark markOf(Outcome::Code code);

} // namespace command

#endif
