// The write of a line, and how the sinks handle its results.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "handled_signals.h"
#include "tests/support/child.h"
#include "tests/support/failing_allocations.h"

using koze_pdk_4_4::CZeTraceDescriptorSink;
using testing::ElementsAre;
using testing::EndsWith;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

/// A descriptor that only the replaced `write` knows.
constexpr int watched = 12345;

/// How a write to the watched descriptor goes: an error number, or how many bytes it takes.
struct Answer {
    int error;
    std::size_t taken;
};

std::deque<Answer> answers;
std::vector<std::string> written;
std::vector<int> blocked; // signals, during the last write
bool memoryIsOut = false;
int arriving = 0; // a signal that each write raises
std::vector<timespec> waits;

std::vector<int> blockedSignals()
{
    std::vector<int> signals;
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    for (int signal = 1; signal < SIGRTMIN; ++signal) {
        if (sigismember(&mask, signal) == 1)
            signals.push_back(signal);
    }
    return signals;
}

} // namespace

extern "C" ssize_t write(int fd, const void* buf, size_t n)
{
    if (fd != watched)
        return syscall(SYS_write, fd, buf, n);
    written.emplace_back(static_cast<const char*>(buf), n);
    blocked = blockedSignals();
    if (arriving != 0)
        (void)std::raise(arriving);
    if (answers.empty())
        return static_cast<ssize_t>(n);
    const Answer answer = answers.front();
    answers.pop_front();
    if (answer.error == 0)
        return static_cast<ssize_t>(answer.taken);
    errno = answer.error;
    return -1;
}

// Records the timeout and does not wait.
extern "C" int sigtimedwait(const sigset_t* set, siginfo_t* info, const timespec* timeout)
{
    waits.push_back(*timeout);
    const timespec noWait{};
    return static_cast<int>(syscall(SYS_rt_sigtimedwait, set, info, &noWait, _NSIG / 8));
}

static bool allocationFails()
{
    return memoryIsOut;
}

namespace {

class Write : public testing::Test {
protected:
    void SetUp() override
    {
        answers.clear();
        written.clear();
    }

    CZeTraceDescriptorSink sink{6, watched};
};

TEST_F(Write, IsAskedOnceALine)
{
    sink.write(2, "first");
    sink.write(3, "second");
    EXPECT_THAT(written, ElementsAre(EndsWith(" 2 first\n"), EndsWith(" 3 second\n")));
    EXPECT_EQ(sink.dropped(), 0U);
}

TEST_F(Write, IsAskedOnceForALineOfAMebibyte)
{
    const std::string name(1 << 20, 'x');
    sink.write(2, name);
    EXPECT_THAT(written, ElementsAre(EndsWith(" 2 " + name + "\n")));
}

TEST_F(Write, IsAskedOnceForALineOfControlCharacters)
{
    sink.write(2, std::string(1 << 16, '\n'));
    ASSERT_THAT(written, SizeIs(1));
    EXPECT_THAT(written[0], EndsWith("\\x0a\\x0a\n"));
}

TEST_F(Write, IsAskedAgainWhenASignalInterruptsIt)
{
    answers = {{EINTR, 0}, {EINTR, 0}};
    sink.write(2, "line");
    ASSERT_THAT(written, SizeIs(3));
    EXPECT_EQ(written[0], written[2]);
    EXPECT_EQ(sink.dropped(), 0U);
}

TEST_F(Write, IsNotAskedAgainWhenItTakesNothing)
{
    answers = {{EINTR, 0}, {0, 0}};
    sink.write(2, "lost");
    EXPECT_THAT(written, SizeIs(2));
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST_F(Write, IsNotAskedAgainAfterAnyOtherError)
{
    for (const int error : {EAGAIN, ENOSPC, EBADF, EPIPE, EIO, EFBIG, EDQUOT}) {
        written.clear();
        answers = {{error, 0}};
        sink.write(2, "lost");
        EXPECT_THAT(written, SizeIs(1)) << error;
    }
    EXPECT_EQ(sink.dropped(), 7U);
}

TEST_F(Write, IsNotFollowedByAWaitForASignalThatDoesNotCome)
{
    waits.clear();
    answers = {{EAGAIN, 0}};
    sink.write(2, "lost");
    ASSERT_THAT(waits, SizeIs(1));
    EXPECT_EQ(waits[0].tv_sec, 0);
    EXPECT_EQ(waits[0].tv_nsec, 0);
}

TEST_F(Write, IsNotAskedForTheRestOfACutLine)
{
    answers = {{0, 10}};
    sink.write(2, "cut");
    EXPECT_THAT(written, SizeIs(1));
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST_F(Write, EndsACutLineBeforeTheNextOneAndOnlyThen)
{
    answers = {{0, 10}};
    sink.write(2, "cut");
    sink.write(2, "whole");
    sink.write(2, "next");
    EXPECT_THAT(written, ElementsAre(Not(StartsWith("\n")), MatchesRegex("\n2.* 2 whole\n"),
                                     Not(StartsWith("\n"))));
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST_F(Write, EndsALineThatWasCutAfterOneByte)
{
    answers = {{0, 1}};
    sink.write(2, "cut");
    sink.write(2, "whole");
    EXPECT_THAT(written, ElementsAre(StartsWith("2"), MatchesRegex("\n2.* 2 whole\n")));
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST_F(Write, EndsACutLineEvenWhenOthersAreLostInBetween)
{
    answers = {{0, 10}, {ENOSPC, 0}, {0, 20}, {0, 0}};
    for (int number = 0; number < 5; ++number)
        sink.write(2, "line");
    EXPECT_THAT(written, ElementsAre(Not(StartsWith("\n")), StartsWith("\n"), StartsWith("\n"),
                                     StartsWith("\n"), StartsWith("\n")));
    EXPECT_EQ(sink.dropped(), 4U);
}

TEST_F(Write, ALineThatIsLostAsAWholeLeavesNothingToEnd)
{
    answers = {{ENOSPC, 0}, {0, 0}};
    for (int number = 0; number < 3; ++number)
        sink.write(2, "line");
    EXPECT_THAT(written, SizeIs(3));
    EXPECT_THAT(written, testing::Each(Not(StartsWith("\n"))));
}

TEST_F(Write, ALineWithoutMemoryIsDroppedAndCounted)
{
    const std::string text(1000, 'x');
    memoryIsOut = true;
    sink.write(2, text);
    memoryIsOut = false;
    EXPECT_THAT(written, SizeIs(0));
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST_F(Write, ChangesTheMaskByTheSignalsOfItsOwnFailuresOnly)
{
    sigset_t hosts;
    sigemptyset(&hosts);
    sigaddset(&hosts, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &hosts, nullptr);
    sink.write(2, "line");
    EXPECT_THAT(blocked, testing::UnorderedElementsAre(SIGUSR1, SIGPIPE, SIGXFSZ));
    EXPECT_THAT(blockedSignals(), ElementsAre(SIGUSR1));
    pthread_sigmask(SIG_UNBLOCK, &hosts, nullptr);
}

TEST_F(Write, ASignalThatArrivesDuringAWholeLineReachesTheHost)
{
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        EXPECT_TRUE(holdsInChild([this, signal] {
            (void)std::signal(signal, countHandled);
            arriving = signal;
            sink.write(2, "kept");
            return sink.dropped() == 0 && handled == 1;
        })) << signal;
    }
}

} // namespace
