#ifndef ACTIVE_LOOKUPS_H
#define ACTIVE_LOOKUPS_H

#include <functional>

#include "active/lookup_result.h"
#include "active/lookup_rules.h"
#include "cli/options.h"

namespace command {

/// How the lookups of one run are made.
struct LookupOptions {
    LookupRules rules;
    bool withProgress;
    unsigned int jobs;
};

/// Takes the results as they come.
struct ResultReceiver {
    std::function<void(LookupResult)> write;
    std::function<void()> flush;                    // called when the next result is not there yet
    std::function<void(bool isInterrupted)> finish; // called after the last result
};

/// Looks up the active paths of `options.paths` and hands the results over in their order. Returns
/// false when the time limit passed before standard input ended: later paths have no results.
///
/// A signal that interrupts it exits the process, see Interrupt, after the receiver got the results
/// so far. When the time limit passes, the tools are ended, and the paths without an
/// answer get results that say so. Throws what the receiver and PathSource throw, after it has
/// ended the tools; threads that are in a pause, or whose tool does not end, are then detached.
bool lookUpActivePaths(const Options& options, const LookupOptions& lookup,
                       const ResultReceiver& receiver);

} // namespace command

#endif
