#ifndef ACTIVE_LOOKUPS_H
#define ACTIVE_LOOKUPS_H

#include <functional>

#include "active/lookup_result.h"
#include "cli/options.h"

namespace command {

/// How active paths are looked up.
struct LookupOptions {
    bool refresh;
    bool withProgress;
    unsigned int jobs;
};

/// Takes the results as they come.
struct ResultReceiver {
    std::function<void(const LookupResult&)> write;
    std::function<void()> flush; // called when the next result takes its time
};

/// Looks up the active paths of `options.paths` and hands the results over in their order.
///
/// Ends the process when it is interrupted, see Interrupt. Throws what the receiver and PathSource
/// throw, when no tool is left running; threads that pause are then detached.
void lookUpActivePaths(const Options& options, const LookupOptions& lookup,
                       const ResultReceiver& receiver);

} // namespace command

#endif
