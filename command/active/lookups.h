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
    std::function<void()> flush; // called when the next result is not there yet
};

/// Looks up the active paths of `options.paths` and hands the results over in their order.
///
/// A signal that interrupts it exits the process, see Interrupt. Throws what the receiver and
/// PathSource throw, after it has ended the tools; threads that are in a pause are then detached.
void lookUpActivePaths(const Options& options, const LookupOptions& lookup,
                       const ResultReceiver& receiver);

} // namespace command

#endif
