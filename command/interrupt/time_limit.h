#ifndef INTERRUPT_TIME_LIMIT_H
#define INTERRUPT_TIME_LIMIT_H

#include <chrono>
#include <optional>

namespace command {

/// When a command has to end; nothing without a limit.
using TimeLimit = std::optional<std::chrono::steady_clock::time_point>;

} // namespace command

#endif
