#ifndef ACTIVE_TIMELINE_H
#define ACTIVE_TIMELINE_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "active/trace_event.h"

namespace command {

/// The steps of a lookup and how long each took, from its trace lines. Serves one thread.
class Timeline {
public:
    using Clock = std::chrono::steady_clock;

    /// A command or, without one, a wait between two attempts.
    struct Step {
        std::string command;
        std::optional<int> result; // of a command: 0 for success; nothing when it could not be run
        Clock::time_point begin;
        Clock::duration duration{};

        bool isWait() const { return command.empty(); }
    };

    /// Adds the event of the next trace line, which came at `now`.
    void take(const TraceEvent& event, Clock::time_point now);

    /// In order. The last one may not have ended yet.
    const std::vector<Step>& steps() const { return m_steps; }

    /// The step that has not ended; null between steps.
    const Step* current() const { return m_isOpen ? &m_steps.back() : nullptr; }

    /// The number of the current attempt, from 1; during a wait, of the attempt before it.
    int attempt() const { return m_attempt; }

private:
    void open(std::string command, Clock::time_point now);
    void close(Clock::time_point now);

    std::vector<Step> m_steps;
    bool m_isOpen = false;
    int m_attempt = 1;
};

} // namespace command

#endif
