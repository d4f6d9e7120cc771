#include "interrupt/interrupt.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <system_error>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include "tests/command/interrupt/shell_tool.h"

namespace {

bool threadsCanStart = true;

} // namespace

/// Replaces the C library's function.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept
{
    if (!threadsCanStart)
        return EAGAIN;
    const auto real =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return real(thread, attributes, start, argument);
}

namespace {

using command::Interrupt;
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
        const Interrupt interrupt(stop, [] {});
        kill(getpid(), SIGRTMIN);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
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
        std::optional<ShellTool> tool;
        const Interrupt interrupt(stop, [&tool] { _exit(tool->isSessionGone() ? 7 : 8); });
        tool.emplace(stop, "ready; sleep 100");
        kill(getpid(), SIGTERM);
        tool->status();
        pause();
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(7), "");
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
    threadsCanStart = false;
    try {
        const Interrupt interrupt(stop, [] {});
        ADD_FAILURE() << "it started";
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.what(), "cannot start a thread: Resource temporarily unavailable");
    }
    threadsCanStart = true;
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signal : {SIGINT, SIGPIPE, SIGRTMIN})
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

} // namespace
