#ifndef ACTIVE_LOOKUP_STATUS_H
#define ACTIVE_LOOKUP_STATUS_H

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

#include "active/timeline.h"

namespace command {

/// What one worker does at the moment.
struct Activity {
    std::string path;
    int attempt = 1;
    std::string command; // the running one; empty during a wait and between steps
    bool isWaiting = false;
    Timeline::Clock::time_point lookupBegin;
    Timeline::Clock::time_point stepBegin;
};

/// Hands a worker's activity to the thread that shows the progress. Safe between threads.
class LookupStatus {
public:
    void set(std::optional<Activity> activity)
    {
        const std::lock_guard lock(m_mutex);
        m_activity = std::move(activity);
    }

    /// Nothing between two lookups.
    std::optional<Activity> get() const
    {
        const std::lock_guard lock(m_mutex);
        return m_activity;
    }

private:
    mutable std::mutex m_mutex;
    std::optional<Activity> m_activity;
};

} // namespace command

#endif
