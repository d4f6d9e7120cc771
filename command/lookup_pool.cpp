#include "lookup_pool.h"

#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include "start_thread.h"
#include "stop_request.h"

namespace command {

/// What the workers share. It lives as long as the last of them.
struct LookupPool::State {
    struct Answer {
        Row row;
        std::exception_ptr failure;
    };
    using Answers = std::map<std::size_t, Answer>;
    /// Made before the work, so that no answer and no failure is lost for want of memory.
    using Place = Answers::node_type;

    static Place newPlace();
    std::optional<std::string> takePath(Place& place);
    Place answer(const std::string& path, unsigned int worker, Place place);
    void put(Place place);
    void runWorker(unsigned int worker, Place place);

    Source source;
    Work work;
    std::mutex sourceMutex;
    std::size_t taken = 0;
    bool exhausted = false;

    std::mutex mutex;
    std::condition_variable changed;
    Answers answers;
    unsigned int working = 0;
};

LookupPool::State::Place LookupPool::State::newPlace()
{
    Answers answers;
    answers.try_emplace(0);
    return answers.extract(answers.begin());
}

/// The next path, whose answer has its number in `place`. What the source throws is put there.
std::optional<std::string> LookupPool::State::takePath(Place& place)
{
    const std::lock_guard lock(sourceMutex);
    if (exhausted)
        return std::nullopt;
    place.key() = taken++;
    std::optional<std::string> path;
    try {
        path = source();
    } catch (...) {
        place.mapped().failure = std::current_exception();
        put(std::move(place));
    }
    exhausted = !path;
    return path;
}

/// Puts the answer in `place` and returns the place for the worker's next one; an empty place when
/// there is none, which ends the worker.
LookupPool::State::Place LookupPool::State::answer(const std::string& path, unsigned int worker,
                                                   Place place)
{
    Place next;
    try {
        next = newPlace();
        place.mapped().row = work(path, worker);
    } catch (const Interrupted&) {
        return {};
    } catch (...) {
        place.mapped().failure = std::current_exception();
    }
    put(std::move(place));
    return next;
}

void LookupPool::State::put(Place place)
{
    const std::lock_guard lock(mutex);
    answers.insert(std::move(place));
    changed.notify_one();
}

void LookupPool::State::runWorker(unsigned int worker, Place place)
{
    while (!place.empty()) {
        const std::optional<std::string> path = takePath(place);
        place = path ? answer(*path, worker, std::move(place)) : Place();
    }
    const std::lock_guard lock(mutex);
    --working;
    changed.notify_one();
}

LookupPool::LookupPool(unsigned int workers, Source source, Work work)
    : m_state(std::make_shared<State>())
{
    m_state->source = std::move(source);
    m_state->work = std::move(work);
    m_threads.reserve(workers);
    for (unsigned int worker = 0; worker < workers; ++worker) {
        const std::lock_guard lock(m_state->mutex);
        try {
            m_threads.push_back(
                startThread([state = m_state, worker, place = State::newPlace()]() mutable {
                    state->runWorker(worker, std::move(place));
                }));
        } catch (const std::exception&) {
            if (worker == 0)
                throw;
            break;
        }
        ++m_state->working;
    }
}

LookupPool::~LookupPool()
{
    std::unique_lock lock(m_state->mutex);
    const bool allEnded = m_state->working == 0;
    lock.unlock();
    for (std::thread& thread : m_threads)
        allEnded ? thread.join() : thread.detach();
}

LookupPool::Next LookupPool::next(Row& row, std::chrono::milliseconds patience)
{
    State& state = *m_state;
    std::unique_lock lock(state.mutex);
    state.changed.wait_for(
        lock, patience, [&] { return state.working == 0 || state.answers.count(m_handedOut) > 0; });
    auto answer = state.answers.extract(m_handedOut);
    if (answer.empty())
        return state.working == 0 ? Next::end : Next::pending;
    if (answer.mapped().failure)
        std::rethrow_exception(answer.mapped().failure);
    row = std::move(answer.mapped().row);
    ++m_handedOut;
    return Next::row;
}

} // namespace command
