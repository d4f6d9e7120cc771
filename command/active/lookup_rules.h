#ifndef ACTIVE_LOOKUP_RULES_H
#define ACTIVE_LOOKUP_RULES_H

#include <optional>

#include "interrupt/time_limit.h"
#include "kovm/retry_policy.h"

namespace command {

/// How active paths are looked up.
struct LookupRules {
    bool refresh = false; // remove the disk's node first
    bool asGiven = false; // ask about a partition's own name
    TimeLimit limit;      // of all lookups together
    /// The most attempts, without a pause after the last one. Nothing leaves number and pauses to
    /// the library.
    std::optional<int> tries;

    /// The attempts and pauses of a lookup.
    kovm::RetryPolicy policy() const
    {
        kovm::RetryPolicy policy = kovm::retryPolicy(refresh);
        policy.attempts = tries.value_or(policy.attempts);
        return policy;
    }
};

} // namespace command

#endif
