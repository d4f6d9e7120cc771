// Writes that raise a signal: the pipe or socket has no reader, or the file is at its size limit.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <csignal>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "handled_signals.h"
#include "tests/support/child.h"

using koze_pdk_4_4::CZeTraceDescriptorSink;

namespace {

/// Makes a descriptor on which a write raises `signal`.
struct Failure {
    const char* name;
    int signal;
    int (*descriptor)();
};

int pipeWithoutReader()
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    close(ends[0]);
    return ends[1];
}

int socketWithoutReader()
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return -1;
    close(ends[0]);
    return ends[1];
}

int fileAtItsLimit()
{
    const rlimit limit{0, 0};
    setrlimit(RLIMIT_FSIZE, &limit);
    return memfd_create("limited", MFD_CLOEXEC);
}

void block(int signal)
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

bool isBlocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

bool isPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

/// Leaves the signal blocked and pending; false when that fails.
bool raiseBlocked(int signal)
{
    block(signal);
    return std::raise(signal) == 0 && isPending(signal);
}

class Signals : public testing::TestWithParam<Failure> {
protected:
    /// Whether a line is dropped whose write raises the signal.
    static bool losesALine()
    {
        const int descriptor = GetParam().descriptor();
        CZeTraceDescriptorSink sink(6, descriptor);
        sink.write(2, "lost");
        return descriptor >= 0 && sink.dropped() == 1;
    }

    static int signal() { return GetParam().signal; }
};

INSTANTIATE_TEST_SUITE_P(TraceDescriptorSink, Signals,
                         testing::Values(Failure{"Pipe", SIGPIPE, pipeWithoutReader},
                                         Failure{"Socket", SIGPIPE, socketWithoutReader},
                                         Failure{"File", SIGXFSZ, fileAtItsLimit}),
                         [](const auto& failure) { return failure.param.name; });

TEST_P(Signals, DoNotEndAHostOfDefaultDispositions)
{
    EXPECT_TRUE(holdsInChild([] { return losesALine() && losesALine(); }));
}

TEST_P(Signals, AreNotBlockedAfterwards)
{
    EXPECT_TRUE(
        holdsInChild([] { return losesALine() && !isBlocked(SIGPIPE) && !isBlocked(SIGXFSZ); }));
}

TEST_P(Signals, DoNotReachTheHostsHandler)
{
    EXPECT_TRUE(holdsInChild([] {
        (void)std::signal(signal(), countHandled);
        return losesALine() && handled == 0 && std::raise(signal()) == 0 && handled == 1;
    }));
}

TEST_P(Signals, ThatTheHostIgnoresStayIgnored)
{
    EXPECT_TRUE(holdsInChild([] {
        (void)std::signal(signal(), SIG_IGN);
        return losesALine() && std::signal(signal(), SIG_DFL) == SIG_IGN && !isPending(signal());
    }));
}

TEST_P(Signals, ThatTheHostBlocksStayBlockedAndAreNotLeftPending)
{
    EXPECT_TRUE(holdsInChild([] {
        block(signal());
        return losesALine() && isBlocked(signal()) && !isPending(signal());
    }));
}

TEST_P(Signals, ThatNoWriteRaisesAreLeftAlone)
{
    EXPECT_TRUE(holdsInChild([] {
        return raiseBlocked(SIGUSR1) && losesALine() && isBlocked(SIGUSR1) && isPending(SIGUSR1);
    }));
}

TEST_P(Signals, ThatWerePendingStayPending)
{
    EXPECT_TRUE(holdsInChild([] {
        return raiseBlocked(signal()) && losesALine() && isBlocked(signal()) && isPending(signal());
    }));
}

TEST_P(Signals, OfTheOtherKindThatWerePendingStayPending)
{
    EXPECT_TRUE(holdsInChild([] {
        const int other = signal() == SIGPIPE ? SIGXFSZ : SIGPIPE;
        return raiseBlocked(other) && losesALine() && isPending(other) && !isPending(signal());
    }));
}

TEST(SignalsOfAWholeLine, StayTheHosts)
{
    EXPECT_TRUE(holdsInChild([] {
        CZeTraceDescriptorSink sink(6, open("/dev/null", O_WRONLY | O_CLOEXEC));
        const bool raised = raiseBlocked(SIGPIPE);
        sink.write(2, "kept");
        return raised && sink.dropped() == 0 && isPending(SIGPIPE);
    }));
}

} // namespace
