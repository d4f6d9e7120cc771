#include "interrupt/interrupt.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <system_error>
#include <thread>

#include <dlfcn.h>
#include <unistd.h>

#include "tests/command/interrupt/shell_tool.h"
#include "tests/support/thread_limit.h"

namespace {

std::atomic<int> waits = 0;      // for signals, that have begun
std::atomic<int> earlyWaits = 0; // that are still to end at once, for no signal of this program's

} // namespace

/// Ends at once as after a wake signal that somebody else sent.
extern "C" int sigwaitinfo(const sigset_t* signals, siginfo_t* info)
{
    ++waits;
    if (earlyWaits > 0) {
        --earlyWaits;
        return SIGRTMIN;
    }
    const auto real = reinterpret_cast<decltype(&sigwaitinfo)>(dlsym(RTLD_NEXT, "sigwaitinfo"));
    return real(signals, info);
}

/// Ends at once as when the process was stopped and continued.
extern "C" int sigtimedwait(const sigset_t* signals, siginfo_t* info, const timespec* time)
{
    ++waits;
    if (earlyWaits > 0) {
        --earlyWaits;
        errno = EINTR;
        return -1;
    }
    const auto real = reinterpret_cast<decltype(&sigtimedwait)>(dlsym(RTLD_NEXT, "sigtimedwait"));
    return real(signals, info, time);
}

namespace {

using command::Interrupt;
using command::StopReason;
using command::StopRequest;

class InterruptTest : public testing::Test {
protected:
    /// The tests may have been started with signals ignored.
    InterruptTest()
    {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
            std::signal(signal, SIG_DFL);
    }

    StopRequest stop;
};

using InterruptDeathTest = InterruptTest;

/// Sends this process a signal at the very end of an Interrupt, and exits with 0.
void finishAfterSignal(StopRequest& stop, int signal)
{
    {
        const Interrupt interrupt(stop, [] {});
        kill(getpid(), signal);
    }
    _exit(0);
}

TEST_F(InterruptDeathTest, ASignalThatCameBeforeTheEndIsNotLost)
{
    // A race decides whether the signal or the end is seen first.
    for (int attempt = 0; attempt < 20; ++attempt) {
        EXPECT_EXIT(finishAfterSignal(stop, SIGINT), testing::ExitedWithCode(130), "");
        EXPECT_EXIT(finishAfterSignal(stop, SIGTERM), testing::ExitedWithCode(143), "");
        EXPECT_EXIT(finishAfterSignal(stop, SIGHUP), testing::ExitedWithCode(129), "");
        EXPECT_EXIT(finishAfterSignal(stop, SIGQUIT), testing::ExitedWithCode(131), "");
    }
}

TEST_F(InterruptDeathTest, AStrayWakeSignalEndsNothing)
{
    const auto interrupted = [this] {
        waits = 0;
        earlyWaits = 1;
        const Interrupt interrupt(stop, [] {});
        while (waits < 2)
            std::this_thread::yield();
        kill(getpid(), SIGINT);
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(130), "");
}

TEST_F(InterruptDeathTest, BeforeTheEndTheRequestIsMade)
{
    const auto interrupted = [this] {
        const Interrupt interrupt(stop, [this] {
            try {
                stop.check();
            } catch (const command::Interrupted&) {
                _exit(7);
            }
        });
        kill(getpid(), SIGTERM);
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(7), "");
}

TEST_F(InterruptDeathTest, BeforeTheEndTheToolsHaveEnded)
{
    const auto interrupted = [this] {
        std::atomic<const ShellTool*> started{nullptr};
        const Interrupt interrupt(stop, [&] { _exit(started.load()->isSessionGone() ? 7 : 8); });
        ShellTool tool(stop, "ready; sleep 100");
        started = &tool;
        kill(getpid(), SIGTERM);
        tool.status();
        pause();
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(7), "");
}

/// Whether the request is made for this reason before long.
bool isRequested(const StopRequest& stop, command::StopReason reason)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (stop.reason() != reason && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return stop.reason() == reason;
}

TEST_F(InterruptDeathTest, ASignalLeavesTheCallerTimeToWriteWhatItHas)
{
    const auto interrupted = [this] {
        Interrupt interrupt(stop, [] {});
        kill(getpid(), SIGINT);
        isRequested(stop, StopReason::interrupt);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        std::fputs("the last row", stderr);
        interrupt.finish();
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(130), "^the last row$");
}

TEST_F(InterruptDeathTest, ACallerThatHangsIsNotWaitedForLong)
{
    const auto interrupted = [this] {
        const Interrupt interrupt(stop, [] {});
        kill(getpid(), SIGTERM);
        std::this_thread::sleep_for(std::chrono::seconds(60));
    };
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(143), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST_F(InterruptTest, TheTimeLimitEndsTheToolsAndNothingElse)
{
    bool isLineClosed = false;
    const auto begin = std::chrono::steady_clock::now();
    Interrupt interrupt(
        stop, [&] { isLineClosed = true; }, begin + std::chrono::milliseconds(300));
    const ShellTool tool(stop, "ready; sleep 100");
    EXPECT_EQ(tool.status(), 1000 + SIGTERM);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_TRUE(tool.isSessionGone());
    EXPECT_EQ(stop.reason(), StopReason::timeLimit);
    interrupt.finish();
    EXPECT_TRUE(isLineClosed);
}

TEST_F(InterruptTest, AToolThatIgnoresTheRequestToEndIsKilledAtTheTimeLimit)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
    const Interrupt interrupt(
        stop, [] {}, limit);
    const ShellTool tool(stop, "trap '' TERM; ready; while :; do sleep 0.01; done");
    EXPECT_EQ(tool.status(), 1000 + SIGKILL);
    EXPECT_TRUE(tool.isSessionGone());
}

TEST_F(InterruptTest, ATimeLimitThatDoesNotPassIsNoRequest)
{
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::hours(1);
        const Interrupt interrupt(
            stop, [] {}, limit);
    }
    EXPECT_FALSE(stop.isRequested());
}

TEST_F(InterruptTest, AWaitThatEndsBeforeTheTimeLimitBeginsAnew)
{
    earlyWaits = 3;
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::hours(1);
        const Interrupt interrupt(
            stop, [] {}, limit);
    }
    EXPECT_EQ(earlyWaits, 0);
    EXPECT_FALSE(stop.isRequested());
}

TEST_F(InterruptDeathTest, ASignalAfterTheTimeLimitEndsTheCommand)
{
    const auto interrupted = [this] {
        const Interrupt interrupt(
            stop, [] {}, std::chrono::steady_clock::now());
        isRequested(stop, StopReason::timeLimit);
        kill(getpid(), SIGINT);
        isRequested(stop, StopReason::interrupt);
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(130), "");
}

TEST_F(InterruptTest, TheSignalsGoThroughAgainWhenItIsGone)
{
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        const Interrupt interrupt(stop, [] {});
        sigset_t during;
        pthread_sigmask(SIG_SETMASK, nullptr, &during);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
            EXPECT_EQ(sigismember(&during, signal), 1) << signal;
        EXPECT_EQ(sigismember(&during, SIGUSR1), 0);
    }
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGRTMIN})
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
    EXPECT_NO_THROW(stop.check());
}

TEST_F(InterruptTest, WithoutAThreadItSaysSoAndLetsTheSignalsThrough)
{
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    threadsLeft = 0;
    try {
        const Interrupt interrupt(stop, [] {});
        ADD_FAILURE() << "it started";
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.what(), "cannot start a thread: Resource temporarily unavailable");
    }
    threadsLeft.reset();
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signal : {SIGINT, SIGPIPE, SIGRTMIN})
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

} // namespace
