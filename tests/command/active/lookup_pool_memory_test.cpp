#include "active/lookup_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <new>

#include "tests/support/failing_allocations.h"

namespace {

std::atomic<long> allocations{0};
std::atomic<long> firstFailing{0};
std::atomic<long> lastFailing{0};

} // namespace

static bool allocationFails()
{
    const long number = ++allocations;
    return number >= firstFailing && number <= lastFailing;
}

namespace {

using namespace std::chrono_literals;
using command::LookupPool;
using command::LookupResult;

constexpr int pathCount = 6;

/// Allocations fail, in all threads, from number `first` to number `last`, while it lives.
class ShortMemory {
public:
    ShortMemory(long first, long last)
    {
        allocations = 0;
        firstFailing = first;
        lastFailing = last;
    }
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;
    ~ShortMemory() { lastFailing = 0; }

    bool wasShort() const { return allocations >= firstFailing; }
};

struct Outcome {
    int answers = 0;
    bool inOrder = true;
    bool hasFailed = false;
    bool wasShort = false;
};

void take(LookupPool& pool, Outcome& outcome)
{
    LookupResult result;
    for (LookupPool::Next next{}; next != LookupPool::Next::end;) {
        try {
            next = pool.next(result, 10s);
            if (next == LookupPool::Next::result)
                outcome.inOrder =
                    result.name == std::to_string(outcome.answers++) && outcome.inOrder;
        } catch (const std::bad_alloc&) {
            outcome.hasFailed = true;
        }
    }
}

/// Runs a pool to its end. Its source, its work and this function allocate nothing meanwhile.
Outcome run(unsigned int workers, long firstFailure, long lastFailure)
{
    Outcome outcome;
    const ShortMemory memory(firstFailure, lastFailure);
    try {
        LookupPool pool(
            workers,
            [taken = 0]() mutable {
                return taken < pathCount
                           ? std::optional(std::string(1, static_cast<char>('0' + taken++)))
                           : std::nullopt;
            },
            [](const std::string& path, unsigned int) {
                LookupResult result;
                result.name = path;
                return result;
            });
        take(pool, outcome);
    } catch (const std::bad_alloc&) {
        outcome.hasFailed = true;
    }
    outcome.wasShort = memory.wasShort();
    return outcome;
}

/// Expects all answers, or all answers before a failure. A failure must come with a missing
/// answer.
void expectNothingLost(const Outcome& outcome)
{
    EXPECT_TRUE(outcome.inOrder);
    EXPECT_EQ(outcome.hasFailed, outcome.answers < pathCount);
}

class LookupPoolMemory : public testing::TestWithParam<unsigned int> {};

INSTANTIATE_TEST_SUITE_P(Workers, LookupPoolMemory, testing::Values(1U, 3U));

TEST_P(LookupPoolMemory, NothingIsLostWhenOneAllocationFails)
{
    bool wasShort = true;
    long number = 1;
    for (; wasShort; ++number) {
        SCOPED_TRACE(number);
        const Outcome outcome = run(GetParam(), number, number);
        expectNothingLost(outcome);
        wasShort = outcome.wasShort;
    }
    EXPECT_GT(number, pathCount);
}

TEST_P(LookupPoolMemory, NothingIsLostWhenMemoryIsUsedUp)
{
    bool wasShort = true;
    long number = 1;
    for (; wasShort; ++number) {
        SCOPED_TRACE(number);
        const Outcome outcome = run(GetParam(), number, std::numeric_limits<long>::max());
        expectNothingLost(outcome);
        wasShort = outcome.wasShort;
    }
    EXPECT_GT(number, pathCount);
}

} // namespace
