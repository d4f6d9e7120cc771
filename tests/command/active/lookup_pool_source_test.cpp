// A source of paths that fails.
#include "active/lookup_pool.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "pool_answers.h"

namespace {

using command::LookupPool;
using command::LookupResult;
using testing::ElementsAre;
using namespace std::chrono_literals;

TEST(LookupPoolSource, AfterItsFailureNothingIsWorkedOn)
{
    std::vector<std::string> worked;
    int calls = 0;
    LookupPool pool(1, sourceThatFails(calls), [&](const std::string& path, unsigned int) {
        worked.push_back(path);
        return named(path);
    });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::result);
    EXPECT_THROW(pool.next(result, 10s), std::runtime_error);
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::end); // the worker has ended
    EXPECT_THAT(worked, ElementsAre("a"));
    EXPECT_EQ(calls, 2);
}

} // namespace
