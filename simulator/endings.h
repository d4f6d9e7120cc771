#ifndef SIMULATOR_ENDINGS_H
#define SIMULATOR_ENDINGS_H

#include <optional>

namespace simulator {

/// How a fault ends a call. At most one of the three is set; with none it does not end the call.
struct Ending {
    std::optional<int> status;
    int signal = 0;
    bool hang = false;

    bool ends() const { return status || signal != 0 || hang; }
};

/// The ending that a command runner reports as `result`: a status from 0 to 255, 1000 plus the
/// number of a signal that ends a process, or 1100 when the time limit passed. Any other result has
/// none. REQUIRES: `result` is not negative.
Ending endingOf(int result);

/// Ends the process, or hangs, when `ending` says so; else returns at once. A death by a signal
/// leaves no core file.
void end(const Ending& ending);

} // namespace simulator

#endif
