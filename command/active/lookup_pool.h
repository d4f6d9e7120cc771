#ifndef ACTIVE_LOOKUP_POOL_H
#define ACTIVE_LOOKUP_POOL_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "active/lookup_result.h"

namespace command {

/// Answers paths in several threads at once and hands the answers out in the order of the paths.
///
/// An answer is kept until all answers before it are handed out. `window` bounds the memory that
/// this takes when one path is slow and the input endless: workers take a path only while fewer
/// than `window` paths are taken and not handed out.
class LookupPool {
public:
    static constexpr std::size_t window = 1024;

    /// The next path; nothing at the end. Called by one worker at a time.
    using Source = std::function<std::optional<std::string>()>;
    /// Answers a path in worker number `worker`, counted from 0. When it throws Interrupted, the
    /// worker ends without an answer, and no more paths are taken.
    using Work = std::function<LookupResult(const std::string& path, unsigned int worker)>;

    enum class Next { result, pending, end };

    /// Starts `workers` threads, or as many as the machine allows. Throws what startThread
    /// throws when it allows none.
    LookupPool(unsigned int workers, Source source, Work work);
    LookupPool(const LookupPool&) = delete;
    LookupPool& operator=(const LookupPool&) = delete;

    /// Detaches workers that are still running. They take no more paths, but what source and work
    /// refer to must outlive them.
    ~LookupPool();

    /// Waits up to `patience` for the next answer and stores it in `result`. Throws what source or
    /// work threw for that path, or std::bad_alloc; no answers follow then. When a worker was
    /// interrupted, the end comes before some answers: takeRest has them.
    Next next(LookupResult& result, std::chrono::milliseconds patience);

    /// A path that was taken and not handed out.
    struct Rest {
        LookupResult result; // the name alone when there is no answer
        bool isAnswered;
    };

    /// Takes no more paths, and hands out what is left of those that were taken, in their order.
    /// Throws what source or work threw. Answers that come later are lost.
    std::vector<Rest> takeRest();

    /// The number of answers handed out.
    std::size_t handedOut() const;

private:
    struct State;

    std::shared_ptr<State> m_state;
    std::vector<std::thread> m_threads;
};

} // namespace command

#endif
