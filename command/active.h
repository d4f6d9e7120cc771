#ifndef ACTIVE_H
#define ACTIVE_H

#include <functional>

#include "options.h"
#include "row.h"

namespace command {

/// Takes the answers as they come.
struct RowReceiver {
    std::function<void(const Row&)> write;
    std::function<void()> flush; // called when the next answer takes its time
};

/// Looks up the active paths of `options.paths` and hands the answers over in their order.
///
/// Ends the process when it is interrupted, see Interrupt. Throws what the receiver and PathSource
/// throw, when no tool is left running; threads that pause are then left to themselves.
void lookUpActivePaths(const Options& options, const RowReceiver& receiver);

} // namespace command

#endif
