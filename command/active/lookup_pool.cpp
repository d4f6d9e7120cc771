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
        LookupResult result; // until it is ready, the name alone
        std::exception_ptr failure;
        bool isReady = false;
    };
    using Answers = std::map<std::size_t, Answer>;
    /// Allocated before the path is taken, so that storing its answer or its failure needs no
    /// memory.
    using Slot = Answers::node_type;

    /// A path and the number of its answer.
    struct Task {
        std::string path;
        std::size_t number;
    };

    static Slot newSlot();
    bool awaitRoom();
    std::optional<Task> takeTask(Slot slot);
    Slot answer(const Task& task, unsigned int worker);
    void put(std::size_t number, Answer answer);
    bool isNextReady() const;
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

/// The next path; its answer gets `slot`. When the source throws, the exception is that answer.
std::optional<LookupPool::State::Task> LookupPool::State::takeTask(Slot slot)
{
    const std::lock_guard lock(sourceMutex);
    if (exhausted || !awaitRoom())
        return std::nullopt;
    Task task{{}, taken};
    try {
        std::optional<std::string> path = source();
        exhausted = !path;
        if (exhausted)
            return std::nullopt;
        slot.mapped().result.name = *path;
        task.path = std::move(*path);
    } catch (...) {
        exhausted = true;
        slot.mapped().failure = std::current_exception();
        slot.mapped().isReady = true;
    }
    slot.key() = taken++;
    const std::lock_guard answersLock(mutex);
    answers.insert(std::move(slot));
    changed.notify_one();
    return exhausted ? std::nullopt : std::optional(std::move(task));
}

/// Answers the path and returns the slot for the worker's next answer. An empty slot ends the
/// worker: it was interrupted, or the slot could not be allocated.
LookupPool::State::Slot LookupPool::State::answer(const Task& task, unsigned int worker)
{
    Slot next;
    Answer answer;
    try {
        next = newSlot();
        answer.result = work(task.path, worker);
    } catch (const Interrupted&) {
        stop(); // the window would wait for this answer forever
        return {};
    } catch (...) {
        answer.failure = std::current_exception();
    }
    put(task.number, std::move(answer));
    return next;
}

/// Drops the answer when the rest was handed out.
void LookupPool::State::put(std::size_t number, Answer answer)
{
    const std::lock_guard lock(mutex);
    const auto found = answers.find(number);
    if (found == answers.end())
        return;
    found->second = std::move(answer);
    found->second.isReady = true;
    changed.notify_one();
}

/// REQUIRES: the caller holds `mutex`.
bool LookupPool::State::isNextReady() const
{
    const auto found = answers.find(handedOut);
    return found != answers.end() && found->second.isReady;
}

void LookupPool::State::runWorker(unsigned int worker, Slot slot)
{
    while (!slot.empty()) {
        const std::optional<Task> task = takeTask(std::move(slot));
        slot = task ? answer(*task, worker) : Slot();
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
    state.changed.wait_for(lock, patience,
                           [&] { return state.working == 0 || state.isNextReady(); });
    if (!state.isNextReady())
        return state.working == 0 ? Next::end : Next::pending;
    State::Slot slot = state.answers.extract(state.handedOut);
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

std::vector<LookupPool::Rest> LookupPool::takeRest()
{
    m_state->stop();
    const std::lock_guard lock(m_state->mutex);
    State::Answers answers = std::move(m_state->answers);
    m_state->answers.clear();
    std::vector<Rest> rest;
    for (auto& [number, answer] : answers) {
        if (answer.failure)
            std::rethrow_exception(answer.failure);
        rest.push_back({std::move(answer.result), answer.isReady});
    }
    return rest;
}

std::size_t LookupPool::handedOut() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->handedOut;
}

} // namespace command
