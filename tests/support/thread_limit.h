#ifndef TESTS_SUPPORT_THREAD_LIMIT_H
#define TESTS_SUPPORT_THREAD_LIMIT_H

// Replaces pthread_create, which std::thread calls, in the test program whose one source file
// includes this.

#include <cerrno>
#include <optional>

#include <dlfcn.h>
#include <pthread.h>

/// How many more threads can be started; no limit when empty.
inline std::optional<int> threadsLeft;

// NOLINTNEXTLINE(misc-definitions-in-headers)
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept
{
    if (threadsLeft && (*threadsLeft)-- <= 0)
        return EAGAIN;
    const auto real =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return real(thread, attributes, start, argument);
}

#endif
