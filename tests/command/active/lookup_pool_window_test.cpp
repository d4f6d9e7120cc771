// How far the pool takes paths ahead of the answers that it has handed out.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>

#include "interrupt/stop_request.h"
#include "pool_answers.h"

namespace {

using namespace std::chrono_literals;
using command::LookupPool;
using command::LookupResult;

/// A pool whose source has no end: "0", "1" and so on. The first path is answered when the test
/// says so, the others at once.
class EndlessPool {
public:
    explicit EndlessPool(unsigned int workers)
        : m_pool(std::make_unique<LookupPool>(
              workers, [calls = m_calls] { return std::to_string((*calls)++); },
              [first = m_first.get_future().share()](const std::string& path, unsigned int) {
                  if (path == "0")
                      first.get();
                  return named(path);
              }))
    {}

    void answerFirst() { m_first.set_value(); }
    void failFirst(const std::exception_ptr& failure) { m_first.set_exception(failure); }

    LookupPool& operator*() { return *m_pool; }
    void destroyPool() { m_pool.reset(); }

    /// Waits until the source has been asked `times` times. Returns false when it is asked again
    /// soon after.
    bool isAskedExactly(std::size_t times) const
    {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (*m_calls < times && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        std::this_thread::sleep_for(20ms);
        return *m_calls == times;
    }

    /// Whether no worker is left: each holds a reference to what the source uses.
    bool isLeftByWorkers() const
    {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (m_calls.use_count() > 1 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return m_calls.use_count() == 1;
    }

private:
    std::promise<void> m_first;
    std::shared_ptr<std::atomic<std::size_t>> m_calls =
        std::make_shared<std::atomic<std::size_t>>(0);
    std::unique_ptr<LookupPool> m_pool;
};

class LookupPoolWindow : public testing::TestWithParam<unsigned int> {
protected:
    EndlessPool pool{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Workers, LookupPoolWindow, testing::Values(2U, 64U));

TEST_P(LookupPoolWindow, NoPathIsTakenThatIsTooFarAfterTheFirst)
{
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
    pool.answerFirst();
}

TEST_P(LookupPoolWindow, EachAnswerHandedOutLetsOneMorePathIn)
{
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
    pool.answerFirst();
    LookupResult result;
    for (std::size_t number = 0; number < 3; ++number) {
        ASSERT_EQ((*pool).next(result, 10s), LookupPool::Next::result);
        EXPECT_EQ(result.name, std::to_string(number));
        EXPECT_TRUE(pool.isAskedExactly(LookupPool::window + number + 1));
    }
}

TEST_P(LookupPoolWindow, NoAnswerIsLostAsItMovesOn)
{
    pool.answerFirst();
    LookupResult result;
    for (std::size_t number = 0; number < 3 * LookupPool::window; ++number) {
        ASSERT_EQ((*pool).next(result, 10s), LookupPool::Next::result);
        ASSERT_EQ(result.name, std::to_string(number));
    }
    EXPECT_EQ((*pool).handedOut(), 3 * LookupPool::window);
}

TEST_P(LookupPoolWindow, WorkersThatWaitEndWhenThePoolGoes)
{
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
    pool.destroyPool();
    pool.answerFirst();
    EXPECT_TRUE(pool.isLeftByWorkers());
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
}

TEST_P(LookupPoolWindow, WorkersThatWaitEndWhenOneIsInterrupted)
{
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
    pool.failFirst(std::make_exception_ptr(command::Interrupted()));
    LookupResult result;
    EXPECT_EQ((*pool).next(result, 10s), LookupPool::Next::end);
}

TEST_P(LookupPoolWindow, WorkersThatWaitEndAfterAFailure)
{
    EXPECT_TRUE(pool.isAskedExactly(LookupPool::window));
    pool.failFirst(std::make_exception_ptr(std::runtime_error("no 0")));
    LookupResult result;
    EXPECT_THROW((*pool).next(result, 10s), std::runtime_error);
    EXPECT_EQ((*pool).next(result, 10s), LookupPool::Next::end);
}

} // namespace
