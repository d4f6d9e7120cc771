#ifndef ACTIVE_PROGRESS_TEXT_H
#define ACTIVE_PROGRESS_TEXT_H

#include <optional>
#include <string>

#include "active/lookup_status.h"
#include "kovm/retry_policy.h"

namespace command {

/// How far the lookups are.
struct Progress {
    std::size_t done = 0;
    std::optional<std::size_t> total; // unknown while paths are still read
    std::optional<Activity> longest;  // the running lookup that began first
    kovm::RetryPolicy policy = kovm::waitingPolicy;
};

/// The progress as one line of printable ASCII, with a bar when there is more than one path:
///
///     /dev/sdc: attempt 2 of 4, running kodmpadm getdmpnode for 3 s
///     [#####...............] 16 of 64, /dev/sdq: attempt 1 of 4, next one in 4 s
std::string progressText(const Progress& progress, Timeline::Clock::time_point now);

} // namespace command

#endif
