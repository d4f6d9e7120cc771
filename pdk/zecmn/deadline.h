#ifndef ZECMN_DEADLINE_H
#define ZECMN_DEADLINE_H

#include <algorithm>
#include <chrono>

#include <time.h>

namespace koze_pdk_4_4::runner {

/// A point in time on the steady clock, which setting the system's time does not move.
class Deadline {
public:
    explicit Deadline(std::chrono::nanoseconds limit)
        : m_end(std::chrono::steady_clock::now() + limit)
    {}

    bool passed() const { return std::chrono::steady_clock::now() >= m_end; }

    /// The time left as a timeout of poll: in milliseconds, rounded up, `most` at most.
    int timeout(std::chrono::milliseconds most) const
    {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), most).count());
    }

    /// The same point in time on CLOCK_MONOTONIC, on which the steady clock is built.
    timespec time() const
    {
        const auto since = m_end.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
        return {seconds.count(), std::chrono::nanoseconds(since - seconds).count()};
    }

private:
    std::chrono::steady_clock::time_point m_end;
};

/// The pause between two checks whether a program without a pidfd has ended.
constexpr std::chrono::milliseconds pollInterval{5};

} // namespace koze_pdk_4_4::runner

#endif
