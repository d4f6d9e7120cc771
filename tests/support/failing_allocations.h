#ifndef TESTS_SUPPORT_FAILING_ALLOCATIONS_H
#define TESTS_SUPPORT_FAILING_ALLOCATIONS_H

// Replaces operator new and operator delete of the test program whose one source file includes
// this.

#include <cstdlib>
#include <new>

#include "tests/support/allocation_operators.h"

/// Defined by the test: whether this allocation fails. Called in all threads.
static bool allocationFails();

// Not inlined: if only one of the two is, the compiler warns of mismatched allocation functions.
// NOLINTBEGIN(misc-definitions-in-headers)
[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* block = allocationFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    std::free(block);
}
// NOLINTEND(misc-definitions-in-headers)

#endif
