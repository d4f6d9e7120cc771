#include "active/lookup_pool.h"

#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include "interrupt/start_thread.h"
#include "interrupt/stop_request.h"

namespace command {

/// What the pool and its workers share. Each holds a shared_ptr, because workers may outlive the
/// pool.
struct LookupPool::State {
    struct Answer {
        LookupResult result;
        std::exception_ptr failure;
    };
    using Answers = std::map<std::size_t, Answer>;
    /// Allocated before the work, so that storing its answer or its failure needs no memory.
    using Slot = Answers::node_type;

    static Slot newSlot();
    bool awaitRoom();
    std::optional<std::string> takePath(Slot& slot);
    Slot answer(const std::string& path, unsigned int worker, Slot slot);
    void put(Slot slot);
    void runWorker(unsigned int worker, Slot slot);
    void stop();

    Source source;
    Work work;
    std::mutex sourceMutex;
    std::size_t taken = 0;
    bool exhausted = false;

    std::mutex mutex;
    std::condition_variable changed; // an answer has come, or a worker has ended
    std::condition_variable room;    // an answer was handed out, or no more paths are taken
    Answers answers;
    std::size_t handedOut = 0;
    bool isStopped = false;
    unsigned int working = 0;
};

LookupPool::State::Slot LookupPool::State::newSlot()
{
    Answers answers;
    answers.try_emplace(0);
    return answers.extract(answers.begin());
}

/// Waits until the next answer fits into the window. False when no more paths are to be taken.
/// REQUIRES: the caller holds `sourceMutex`, so that only one worker waits.
bool LookupPool::State::awaitRoom()
{
    std::unique_lock lock(mutex);
    room.wait(lock, [this] { return isStopped || taken < handedOut + window; });
    return !isStopped;
}

/// The next path. Gives `slot` the number of its answer. When the source throws, the exception is
/// that answer.
std::optional<std::string> LookupPool::State::takePath(Slot& slot)
{
    const std::lock_guard lock(sourceMutex);
    if (exhausted || !awaitRoom())
        return std::nullopt;
    slot.key() = taken++;
    std::optional<std::string> path;
    try {
        path = source();
    } catch (...) {
        slot.mapped().failure = std::current_exception();
        put(std::move(slot));
    }
    exhausted = !path;
    return path;
}

/// Answers the path and returns the slot for the worker's next answer. An empty slot ends the
/// worker: it was interrupted, or the slot could not be allocated.
LookupPool::State::Slot LookupPool::State::answer(const std::string& path, unsigned int worker,
                                                  Slot slot)
{
    Slot next;
    try {
        next = newSlot();
        slot.mapped().result = work(path, worker);
    } catch (const Interrupted&) {
        stop(); // without this answer the window would never move on
        return {};
    } catch (...) {
        slot.mapped().failure = std::current_exception();
    }
    put(std::move(slot));
    return next;
}

void LookupPool::State::put(Slot slot)
{
    const std::lock_guard lock(mutex);
    answers.insert(std::move(slot));
    changed.notify_one();
}

void LookupPool::State::runWorker(unsigned int worker, Slot slot)
{
    while (!slot.empty()) {
        const std::optional<std::string> path = takePath(slot);
        slot = path ? answer(*path, worker, std::move(slot)) : Slot();
    }
    const std::lock_guard lock(mutex);
    --working;
    changed.notify_one();
}

/// Each worker ends when it asks for its next path.
void LookupPool::State::stop()
{
    const std::lock_guard lock(mutex);
    isStopped = true;
    room.notify_one();
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
                startThread([state = m_state, worker, slot = State::newSlot()]() mutable {
                    state->runWorker(worker, std::move(slot));
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
    m_state->stop();
    std::unique_lock lock(m_state->mutex);
    const bool allEnded = m_state->working == 0;
    lock.unlock();
    for (std::thread& thread : m_threads)
        allEnded ? thread.join() : thread.detach();
}

LookupPool::Next LookupPool::next(LookupResult& result, std::chrono::milliseconds patience)
{
    State& state = *m_state;
    std::unique_lock lock(state.mutex);
    state.changed.wait_for(lock, patience, [&] {
        return state.working == 0 || state.answers.count(state.handedOut) > 0;
    });
    const State::Slot slot = state.answers.extract(state.handedOut);
    if (slot.empty())
        return state.working == 0 ? Next::end : Next::pending;
    if (slot.mapped().failure) {
        lock.unlock();
        state.stop();
        std::rethrow_exception(slot.mapped().failure);
    }
    result = std::move(slot.mapped().result);
    ++state.handedOut;
    state.room.notify_one();
    return Next::result;
}

std::size_t LookupPool::handedOut() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->handedOut;
}

} // namespace command
