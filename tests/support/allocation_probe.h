#ifndef TESTS_SUPPORT_ALLOCATION_PROBE_H
#define TESTS_SUPPORT_ALLOCATION_PROBE_H

#include <cstddef>
#include <vector>

/// Watches operator new and operator delete of the whole test program, its threads and the
/// libraries that it loads included, while the probe lives. One probe at a time.
///
/// A test program that links allocation_probe replaces both operators.
class AllocationProbe {
public:
    /// The allocation number `failing`, counted from 1, throws std::bad_alloc; with 0 none does.
    explicit AllocationProbe(std::size_t failing = 0);
    ~AllocationProbe();
    AllocationProbe(const AllocationProbe&) = delete;
    AllocationProbe& operator=(const AllocationProbe&) = delete;

    /// The number of allocations so far, the failed one included.
    std::size_t made() const;

    /// The size of the largest allocation so far.
    std::size_t largest() const;

    /// Whether the allocation that was to fail did.
    bool failed() const;

    /// The blocks that were allocated since the probe began and are not freed.
    std::vector<void*> living() const;

    /// Allocations are not watched while it lives: for the test's own code during an operation.
    class Pause {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        bool m_wasWatching = false;
    };
};

#endif
