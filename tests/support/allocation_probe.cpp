#include "tests/support/allocation_probe.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#include "tests/support/allocation_operators.h"

namespace {

// Operator new may be called before any constructor has run, so all of this starts out as zeros.
std::mutex mutex; // of what follows
bool watching = false;
std::size_t allocations = 0;
std::size_t largestAllocation = 0;
std::size_t failingAllocation = 0;
std::array<void*, 4096> blocks = {};
std::size_t blockCount = 0;

void* allocate(std::size_t size)
{
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

} // namespace

void* operator new(std::size_t size)
{
    const std::lock_guard lock(mutex);
    if (!watching)
        return allocate(size);
    largestAllocation = std::max(largestAllocation, size);
    if (++allocations == failingAllocation)
        throw std::bad_alloc();
    void* block = allocate(size);
    if (blockCount == blocks.size())
        std::abort();
    blocks[blockCount++] = block;
    return block;
}

void operator delete(void* block) noexcept
{
    const std::lock_guard lock(mutex);
    // Removed from the list even when no probe watches: malloc may return the address again.
    auto* const end = blocks.begin() + blockCount;
    auto* const found = std::find(blocks.begin(), end, block);
    if (block != nullptr && found != end) {
        *found = *(end - 1);
        --blockCount;
    }
    std::free(block);
}

AllocationProbe::AllocationProbe(std::size_t failing)
{
    const std::lock_guard lock(mutex);
    allocations = 0;
    largestAllocation = 0;
    failingAllocation = failing;
    blockCount = 0;
    watching = true;
}

AllocationProbe::~AllocationProbe()
{
    const std::lock_guard lock(mutex);
    watching = false;
    blockCount = 0;
}

std::size_t AllocationProbe::made() const
{
    const std::lock_guard lock(mutex);
    return allocations;
}

std::size_t AllocationProbe::largest() const
{
    const std::lock_guard lock(mutex);
    return largestAllocation;
}

bool AllocationProbe::failed() const
{
    const std::lock_guard lock(mutex);
    return failingAllocation != 0 && allocations >= failingAllocation;
}

std::vector<void*> AllocationProbe::living() const
{
    const Pause pause;
    std::vector<void*> living(blocks.size()); // allocated before the mutex is locked
    const std::lock_guard lock(mutex);
    living.assign(blocks.begin(), blocks.begin() + blockCount);
    return living;
}

AllocationProbe::Pause::Pause()
{
    const std::lock_guard lock(mutex);
    m_wasWatching = std::exchange(watching, false);
}

AllocationProbe::Pause::~Pause()
{
    const std::lock_guard lock(mutex);
    watching = m_wasWatching;
}
