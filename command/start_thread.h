#ifndef START_THREAD_H
#define START_THREAD_H

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

} // namespace command

#endif
