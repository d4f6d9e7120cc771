#include "lookup_pool.h"

#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>

#include "stop_request.h"

namespace command {

/// What the workers share. It lives as long as the last of them.
struct LookupPool::State {
    struct Task {
        std::size_t number;
        std::string path;
    };
    struct Answer {
        Row row;
        std::exception_ptr failure;
    };

    std::optional<Task> takeTask();
    void answer(const Task& task, unsigned int worker);
    void put(std::size_t number, Answer answer);
    void runWorker(unsigned int worker);

    Source source;
    Work work;
    std::mutex sourceMutex;
    std::size_t taken = 0;
    bool exhausted = false;

    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::size_t, Answer> answers;
    unsigned int working = 0;
};

std::optional<LookupPool::State::Task> LookupPool::State::takeTask()
{
    const std::lock_guard lock(sourceMutex);
    if (exhausted)
        return std::nullopt;
    std::optional<std::string> path;
    try {
        path = source();
    } catch (...) {
        put(taken, {{}, std::current_exception()});
    }
    exhausted = !path;
    return path ? std::optional(Task{taken++, *std::move(path)}) : std::nullopt;
}

void LookupPool::State::answer(const Task& task, unsigned int worker)
{
    Answer answer;
    try {
        answer.row = work(task.path, worker);
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        answer.failure = std::current_exception();
    }
    put(task.number, std::move(answer));
}

void LookupPool::State::put(std::size_t number, Answer answer)
{
    const std::lock_guard lock(mutex);
    answers.emplace(number, std::move(answer));
    changed.notify_one();
}

void LookupPool::State::runWorker(unsigned int worker)
{
    try {
        while (const std::optional<Task> task = takeTask())
            answer(*task, worker);
    } catch (const Interrupted&) { // NOLINT(bugprone-empty-catch): it has ended the worker
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
            m_threads.emplace_back([state = m_state, worker] { state->runWorker(worker); });
        } catch (const std::system_error&) {
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
