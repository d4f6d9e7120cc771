// Asking about several disks at once, and ending early.
#include "doctor/disk_inquiry.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "kovm/command_lines.h"
#include "tests/support/replaced_runner.h"
#include "tests/support/thread_limit.h"

namespace {

using command::askAboutDisks;
using command::DiskAnswer;
using command::InquiryOptions;
using command::StopRequest;
using koze_pdk_4_4::CZeExecPipeBase;
using Outcome = DiskAnswer::Outcome;
using testing::Each;
using testing::Field;

/// What the tools do in this program: they run in several threads at once.
class Tools {
public:
    int run(const std::string& command, std::vector<std::string>& output)
    {
        const int running = ++m_running;
        int most = m_mostAtOnce;
        while (most < running && !m_mostAtOnce.compare_exchange_weak(most, running))
            continue;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        while (isEndless)
            std::this_thread::yield();
        ++m_runs;
        --m_running;
        if (command == throwing)
            throw std::bad_alloc();
        if (command == hanging)
            return CZeExecPipeBase::deadlinePassed;
        if (command == interrupting)
            stop->request(command::StopReason::interrupt);
        output = {"NAME", "====", "node ENABLED"};
        return 0;
    }

    int mostAtOnce() const { return m_mostAtOnce; }
    int running() const { return m_running; }
    int runs() const { return m_runs; }

    std::string hanging;
    std::string interrupting;
    std::string throwing;
    std::atomic<bool> isEndless{false};
    std::shared_ptr<StopRequest> stop = std::make_shared<StopRequest>();

private:
    std::atomic<int> m_running{0};
    std::atomic<int> m_mostAtOnce{0};
    std::atomic<int> m_runs{0};
};

Tools*& currentTools()
{
    static Tools* tools = nullptr;
    return tools;
}

/// A clock that is ahead of the machine's: each wait for a time moves it there.
std::atomic<bool> isClockFast = false;
std::atomic<std::int64_t> nanosecondsAhead = 0;

std::int64_t nanosecondsOf(const timespec& time)
{
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

class DiskInquiry : public testing::Test {
protected:
    DiskInquiry() { currentTools() = &tools; }
    ~DiskInquiry() override
    {
        currentTools() = nullptr;
        threadsLeft.reset();
    }

    std::vector<DiskAnswer> ask(unsigned int jobs, bool forReport = false) const
    {
        InquiryOptions options;
        options.jobs = jobs;
        options.forReport = forReport;
        options.progress = progress;
        return askAboutDisks(disks, options, tools.stop);
    }

    static std::string question(const std::string& disk) { return kovm::nodeQuery(disk); }

    Tools tools;
    std::function<void(std::size_t)> progress = [](std::size_t /*done*/) {};
    std::vector<std::string> disks{"/dev/sda", "/dev/sdb", "/dev/sdc", "/dev/sdd",
                                   "/dev/sde", "/dev/sdf", "/dev/sdg", "/dev/sdh"};
};

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    const std::int64_t now = nanosecondsOf(*time) + nanosecondsAhead;
    *time = {now / 1'000'000'000, now % 1'000'000'000};
    return static_cast<int>(result);
}

/// Of std::condition_variable.
extern "C" int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                      clockid_t clock, const timespec* end)
{
    if (!isClockFast) {
        const auto real = reinterpret_cast<decltype(&pthread_cond_clockwait)>(
            dlsym(RTLD_NEXT, "pthread_cond_clockwait"));
        return real(condition, mutex, clock, end);
    }
    timespec now{};
    clock_gettime(clock, &now);
    nanosecondsAhead += std::max<std::int64_t>(nanosecondsOf(*end) - nanosecondsOf(now), 0);
    pthread_mutex_unlock(mutex);
    std::this_thread::yield();
    pthread_mutex_lock(mutex);
    return ETIMEDOUT;
}

static int resultOf(const std::string& command, std::vector<std::string>& output)
{
    return currentTools()->run(command, output);
}

namespace {

TEST_F(DiskInquiry, AnswersComeInTheOrderOfTheDisks)
{
    for (const unsigned int jobs : {1U, 3U, 64U}) {
        const std::vector<DiskAnswer> answers = ask(jobs);
        ASSERT_EQ(answers.size(), disks.size());
        for (std::size_t i = 0; i < disks.size(); ++i)
            EXPECT_EQ(answers[i].path, disks[i]);
        EXPECT_THAT(answers, Each(Field(&DiskAnswer::outcome, Outcome::answered)));
    }
    EXPECT_EQ(tools.runs(), 3 * 2 * 8);
}

TEST_F(DiskInquiry, AsManyDisksAreAskedAboutAtOnceAsThereAreJobs)
{
    ask(1);
    EXPECT_EQ(tools.mostAtOnce(), 1);
    ask(4);
    EXPECT_GT(tools.mostAtOnce(), 1);
    EXPECT_LE(tools.mostAtOnce(), 4);
}

TEST_F(DiskInquiry, NoDiskIsAskedAboutAfterAToolThatHangs)
{
    tools.hanging = question("sdc");
    const std::vector<DiskAnswer> answers = ask(1);
    EXPECT_EQ(answers[1].outcome, Outcome::answered);
    EXPECT_EQ(answers[2].outcome, Outcome::hangs);
    for (std::size_t i = 3; i < disks.size(); ++i)
        EXPECT_EQ(answers[i].outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 5);
}

TEST_F(DiskInquiry, ARequestToStopLeavesTheAnswersSoFar)
{
    tools.interrupting = question("sdb");
    const std::vector<DiskAnswer> answers = ask(1);
    EXPECT_EQ(answers[0].outcome, Outcome::answered);
    for (std::size_t i = 1; i < disks.size(); ++i)
        EXPECT_EQ(answers[i].outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 3);
    EXPECT_EQ(ask(1).front().outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 3);
}

TEST_F(DiskInquiry, WhatAWorkerThrowsReachesTheCaller)
{
    tools.throwing = question("sdb");
    EXPECT_THROW(ask(2), std::bad_alloc);
}

TEST_F(DiskInquiry, AToolThatDoesNotEndIsNotWaitedFor)
{
    tools.isEndless = true;
    isClockFast = true;
    bool isAskedAlready = false;
    progress = [&](std::size_t done) {
        EXPECT_EQ(done, 0U);
        if (tools.running() > 0 && !std::exchange(isAskedAlready, true))
            tools.stop->request(command::StopReason::interrupt);
    };
    const std::vector<DiskAnswer> answers = ask(1);
    isClockFast = false;
    EXPECT_TRUE(isAskedAlready);
    EXPECT_EQ(answers.size(), disks.size());
    EXPECT_THAT(answers, Each(Field(&DiskAnswer::outcome, Outcome::notAsked)));
    EXPECT_EQ(tools.running(), 1);
    tools.isEndless = false;
    while (tools.stop.use_count() > 1) // by the detached worker
        std::this_thread::yield();
    EXPECT_EQ(tools.runs(), 1);
}

TEST_F(DiskInquiry, OutputsAreKeptForReportsOnly)
{
    EXPECT_TRUE(ask(2).front().asked.front().output.empty());
    EXPECT_EQ(ask(2, true).front().asked.front().output.size(), 3U);
}

TEST_F(DiskInquiry, FewerThreadsThanJobsAnswerAllDisksToo)
{
    threadsLeft = 2;
    EXPECT_THAT(ask(4), Each(Field(&DiskAnswer::outcome, Outcome::answered)));
    EXPECT_EQ(threadsLeft, -1);
    EXPECT_LE(tools.mostAtOnce(), 2);
}

TEST_F(DiskInquiry, WithoutAnyThreadItFails)
{
    threadsLeft = 0;
    EXPECT_THROW(ask(4), std::system_error);
    EXPECT_EQ(tools.runs(), 0);
}

TEST_F(DiskInquiry, NoDiskIsAskedAboutAfterProgressCannotBeShown)
{
    tools.isEndless = true;
    isClockFast = true;
    progress = [](std::size_t) { throw std::runtime_error("progress"); };
    EXPECT_THROW(ask(1), std::runtime_error);
    isClockFast = false;
    tools.isEndless = false;
    while (tools.stop.use_count() > 1) // by the detached worker
        std::this_thread::yield();
    EXPECT_LE(tools.runs(), 2); // of one disk
}

TEST_F(DiskInquiry, SlowAnswersComeAlsoWhenNoProgressIsShown)
{
    tools.isEndless = true;
    isClockFast = true;
    std::thread end([&, time = nanosecondsAhead + 1'000'000'000] { // later than progress is shown
        while (nanosecondsAhead < time)
            std::this_thread::yield();
        isClockFast = false;
        tools.isEndless = false;
    });
    std::vector<DiskAnswer> answers;
    EXPECT_NO_THROW(answers = askAboutDisks(disks, {}, tools.stop));
    end.join();
    EXPECT_EQ(answers.size(), disks.size());
    EXPECT_THAT(answers, Each(Field(&DiskAnswer::outcome, Outcome::answered)));
}

TEST_F(DiskInquiry, NoDisksAreNoWork)
{
    disks.clear();
    EXPECT_TRUE(ask(4).empty());
    EXPECT_EQ(tools.runs(), 0);
}

} // namespace
