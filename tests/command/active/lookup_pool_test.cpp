#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <stdexcept>

#include "interrupt/stop_request.h"
#include "pool_answers.h"
#include "tests/support/thread_limit.h"

namespace {

using namespace std::chrono_literals;
using command::LookupPool;
using command::LookupResult;
using testing::ElementsAre;

TEST(LookupPool, AnswersComeInTheOrderOfThePaths)
{
    std::promise<void> secondIsDone;
    LookupPool pool(2, source({"a", "b", "c"}), [&](const std::string& path, unsigned int) {
        if (path == "a")
            secondIsDone.get_future().wait();
        if (path == "b")
            secondIsDone.set_value();
        return named(path + "!");
    });
    EXPECT_THAT(answers(pool), ElementsAre("a!", "b!", "c!"));
    EXPECT_EQ(pool.handedOut(), 3U);
}

TEST(LookupPool, AnAnswerComesWhileLaterOnesAreAwaited)
{
    std::promise<void> firstIsTaken;
    std::shared_future<void> taken(firstIsTaken.get_future());
    LookupPool pool(2, source({"a", "b"}), [taken](const std::string& path, unsigned int) {
        if (path == "b")
            taken.wait();
        return named(path);
    });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::result);
    EXPECT_EQ(result.name, "a");
    EXPECT_EQ(pool.next(result, 1ms), LookupPool::Next::pending);
    firstIsTaken.set_value();
    EXPECT_THAT(answers(pool), ElementsAre("b"));
}

TEST(LookupPool, NoAnswerAndNoEndWaitsForPatienceToPass)
{
    const auto begin = std::chrono::steady_clock::now();
    std::promise<void> firstIsTaken;
    LookupPool pool(
        1,
        [&, calls = 0]() mutable -> std::optional<std::string> {
            if (++calls == 1)
                return "a";
            firstIsTaken.get_future().wait();
            std::this_thread::sleep_for(20ms);
            return std::nullopt;
        },
        [](const std::string& path, unsigned int) {
            std::this_thread::sleep_for(20ms);
            return named(path);
        });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::result);
    firstIsTaken.set_value();
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::end);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
}

TEST(LookupPool, EveryWorkerHasItsNumberAndAllWorkAtOnce)
{
    constexpr unsigned int workers = 4;
    std::atomic<unsigned int> met{0};
    std::atomic<unsigned int> numbers{0};
    LookupPool pool(workers, source({"a", "b", "c", "d"}),
                    [&](const std::string& path, unsigned int worker) {
                        numbers |= 1U << worker;
                        ++met;
                        while (met < workers)
                            std::this_thread::yield();
                        return named(path);
                    });
    EXPECT_EQ(answers(pool).size(), 4U);
    EXPECT_EQ(numbers, 0xfU);
}

TEST(LookupPool, ItWorksWithAsManyThreadsAsThereCanBe)
{
    threadsLeft = 2;
    LookupPool pool(64, source({"a", "b", "c"}),
                    [](const std::string& path, unsigned int) { return named(path); });
    threadsLeft.reset();
    EXPECT_THAT(answers(pool), ElementsAre("a", "b", "c"));
}

TEST(LookupPool, WithoutAnyThreadItSaysSo)
{
    threadsLeft = 0;
    try {
        const LookupPool pool(64, source({"a"}),
                              [](const std::string& path, unsigned int) { return named(path); });
        ADD_FAILURE() << "it started";
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.what(), "cannot start a thread: Resource temporarily unavailable");
    }
    threadsLeft.reset();
}

TEST(LookupPool, WithoutPathsItEnds)
{
    LookupPool pool(3, source({}),
                    [](const std::string& path, unsigned int) { return named(path); });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::end);
}

TEST(LookupPool, WhatTheWorkThrowsTakesThePlaceOfItsAnswer)
{
    LookupPool pool(1, source({"a", "b"}), [](const std::string& path, unsigned int) {
        if (path == "b")
            throw std::runtime_error("no b");
        return named(path);
    });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::result);
    EXPECT_THROW(pool.next(result, 10s), std::runtime_error);
}

TEST(LookupPool, WhatTheSourceThrowsComesAfterTheAnswersBeforeIt)
{
    int calls = 0;
    LookupPool pool(1, sourceThatFails(calls),
                    [](const std::string& path, unsigned int) { return named(path); });
    LookupResult result;
    EXPECT_EQ(pool.next(result, 10s), LookupPool::Next::result);
    EXPECT_THROW(pool.next(result, 10s), std::runtime_error);
    EXPECT_EQ(calls, 2);
}

TEST(LookupPool, TheSourceIsNotAskedAgainAfterItsEnd)
{
    int calls = 0;
    LookupPool pool(
        4,
        [&]() -> std::optional<std::string> {
            return ++calls == 1 ? std::optional<std::string>("a") : std::nullopt;
        },
        [](const std::string& path, unsigned int) { return named(path); });
    EXPECT_THAT(answers(pool), ElementsAre("a"));
    EXPECT_EQ(calls, 2);
}

TEST(LookupPool, AnInterruptedWorkerLeavesNoAnswer)
{
    LookupPool pool(1, source({"a", "b"}), [](const std::string& path, unsigned int) {
        if (path == "b")
            throw command::Interrupted();
        return named(path);
    });
    EXPECT_THAT(answers(pool), ElementsAre("a"));
}

/// The rest in short: "a" for an answer, "a?" for a path without one.
std::vector<std::string> restOf(LookupPool& pool)
{
    std::vector<std::string> all;
    for (const LookupPool::Rest& rest : pool.takeRest())
        all.push_back(rest.result.name + (rest.isAnswered ? "" : "?"));
    return all;
}

TEST(LookupPool, TheRestAreTheAnswersBehindAPathWithoutOne)
{
    std::promise<void> goOn;
    std::promise<void> thirdIsAsked;
    {
        LookupPool pool(
            2, source({"a", "b", "c"}),
            [&, wait = goOn.get_future().share()](const std::string& path, unsigned int) {
                if (path == "c")
                    thirdIsAsked.set_value();
                if (path != "b")
                    wait.wait();
                return named(path + "!");
            });
        thirdIsAsked.get_future().wait();
        EXPECT_THAT(restOf(pool), ElementsAre("a?", "b!", "c?"));
        goOn.set_value();
        EXPECT_THAT(answers(pool), testing::IsEmpty()); // they come too late
    }
}

TEST(LookupPool, AfterTheRestNoPathIsTaken)
{
    std::promise<void> goOn;
    std::promise<void> isAsked;
    LookupPool pool(1, source({"a", "b"}), [&](const std::string& path, unsigned int) {
        isAsked.set_value();
        goOn.get_future().wait();
        return named(path);
    });
    isAsked.get_future().wait();
    EXPECT_THAT(restOf(pool), ElementsAre("a?"));
    goOn.set_value();
    EXPECT_THAT(answers(pool), testing::IsEmpty());
}

TEST(LookupPool, AfterTheEndThereIsNoRest)
{
    LookupPool pool(2, source({"a", "b"}),
                    [](const std::string& path, unsigned int) { return named(path); });
    EXPECT_THAT(answers(pool), ElementsAre("a", "b"));
    EXPECT_THAT(restOf(pool), testing::IsEmpty());
}

TEST(LookupPool, AnInterruptedWorkersPathIsInTheRest)
{
    LookupPool pool(1, source({"a"}), [](const std::string&, unsigned int) -> LookupResult {
        throw command::Interrupted();
    });
    EXPECT_THAT(answers(pool), testing::IsEmpty());
    EXPECT_THAT(restOf(pool), ElementsAre("a?"));
}

TEST(LookupPool, TheRestThrowsWhatTheWorkThrew)
{
    std::promise<void> secondIsWanted;
    LookupPool pool(
        1,
        [&, calls = 0]() mutable {
            if (++calls == 2)
                secondIsWanted.set_value();
            return calls == 1 ? std::optional<std::string>("a") : std::nullopt;
        },
        [](const std::string&, unsigned int) -> LookupResult { throw std::runtime_error("no a"); });
    secondIsWanted.get_future().wait();
    EXPECT_THROW(pool.takeRest(), std::runtime_error);
}

TEST(LookupPool, ItDoesNotWaitForWorkersThatAreBusyWhenItGoes)
{
    auto begun = std::make_shared<std::promise<void>>();
    auto goOn = std::make_shared<std::promise<void>>();
    auto done = std::make_shared<std::promise<void>>();
    {
        const LookupPool pool(1, source({"a"}),
                              [begun, goOn, done](const std::string& path, unsigned int) {
                                  begun->set_value();
                                  goOn->get_future().wait();
                                  done->set_value();
                                  return named(path);
                              });
        begun->get_future().wait();
    }
    goOn->set_value();
    done->get_future().wait();
}

} // namespace
