#ifndef INTERRUPT_START_THREAD_H
#define INTERRUPT_START_THREAD_H

#include <exception>
#include <system_error>
#include <thread>
#include <utility>

namespace command {

/// Runs `work` in a thread. Throws std::system_error, which says what the system refused, or
/// std::bad_alloc.
template <class Work>
std::thread startThread(Work work)
{
    try {
        return std::thread(std::move(work));
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot start a thread");
    }
}

/// Runs `work` in a thread and waits for its end. Throws what `work` or startThread throws.
template <class Work>
void runInThread(Work work)
{
    std::exception_ptr failure;
    startThread([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }).join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace command

#endif
