#include "pdk/zecmn/descriptor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <system_error>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include "closed_standard.h"
#include "runs_programs.h"
#include "tests/support/child.h"
#include "tests/support/open_descriptors.h"

using koze_pdk_4_4::Descriptor;
using koze_pdk_4_4::moveAboveStdio;
using koze_pdk_4_4::runner::openInput;
using koze_pdk_4_4::runner::openPipe;
using koze_pdk_4_4::runner::Pipe;

namespace {

/// The results of the next writes: at most that many bytes, or a negated errno; later ones succeed.
std::vector<long> writes;

/// The errno of opening a sealed memfd, or 0, and the flags of all calls.
int sealError;
std::vector<unsigned int> memoryFileFlags;

constexpr unsigned int noExecSeal = 0x8;

} // namespace

extern "C" ssize_t write(int descriptor, const void* text, std::size_t size)
{
    if (!writes.empty()) {
        const long next = writes.front();
        writes.erase(writes.begin());
        if (next < 0) {
            errno = static_cast<int>(-next);
            return -1;
        }
        size = std::min(size, static_cast<std::size_t>(next));
    }
    return syscall(SYS_write, descriptor, text, size);
}

extern "C" int memfd_create(const char* name, unsigned int flags) noexcept
{
    memoryFileFlags.push_back(flags);
    const bool sealed = (flags & noExecSeal) != 0;
    if (sealed && sealError != 0) {
        errno = sealError;
        return -1;
    }
    // Without the seal, which this machine's kernel may not know.
    return static_cast<int>(syscall(SYS_memfd_create, name, flags & ~noExecSeal));
}

namespace {

class DescriptorTest : public testing::Test {
protected:
    DescriptorTest()
    {
        sealError = 0;
        memoryFileFlags.clear();
    }

    /// Runs `check` in hosts that have closed some, or none, of their standard descriptors.
    static void inEveryHost(const std::function<void()>& check)
    {
        const std::set<std::string> before = openDescriptors();
        const std::vector<std::vector<int>> sets = {{}, {0}, {1}, {2}, {0, 1}, {0, 1, 2}};
        for (const std::vector<int>& set : sets) {
            const ClosedStandard closed(set);
            check();
        }
        EXPECT_EQ(openDescriptors(), before);
    }

    /// Whether neither a program that the host starts nor the host's own output can reach it.
    static bool isPrivate(const Descriptor& descriptor)
    {
        return descriptor.number() > STDERR_FILENO &&
               fcntl(descriptor.number(), F_GETFD) == FD_CLOEXEC;
    }

    static std::string contents(const Descriptor& descriptor)
    {
        char text[100];
        const ssize_t size = read(descriptor.number(), text, sizeof text);
        return {text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
    }
};

TEST_F(DescriptorTest, APipeIsPrivate)
{
    inEveryHost([] {
        const Pipe pipe = openPipe();
        EXPECT_TRUE(isPrivate(pipe.readEnd));
        EXPECT_TRUE(isPrivate(pipe.writeEnd));
        EXPECT_EQ(write(pipe.writeEnd.number(), "text", 4), 4);
        EXPECT_EQ(contents(pipe.readEnd), "text");
    });
}

TEST_F(DescriptorTest, AnInputIsPrivateAndAtItsBeginning)
{
    for (const std::string text : {"", "text"}) {
        inEveryHost([&] {
            const Descriptor input = openInput(text);
            EXPECT_TRUE(isPrivate(input));
            EXPECT_EQ(contents(input), text);
        });
    }
}

TEST_F(DescriptorTest, AStandardNumberIsReplaced)
{
    for (const int number : {0, 1, 2}) {
        const ClosedStandard closed({number});
        Descriptor opened(open("/dev/null", O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(opened.number(), number);
        const Descriptor moved = moveAboveStdio(std::move(opened));
        EXPECT_TRUE(isPrivate(moved));
        EXPECT_EQ(fcntl(number, F_GETFD), -1);
    }
}

TEST_F(DescriptorTest, AnyOtherNumberIsKept)
{
    Descriptor opened(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
    const int number = opened.number();
    EXPECT_EQ(moveAboveStdio(std::move(opened)).number(), number);
    EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST_F(DescriptorTest, AnInputIsStoredToItsEnd)
{
    writes = {-EINTR, 1, -EINTR, 0, 2};
    EXPECT_EQ(contents(openInput("text")), "text");
    EXPECT_TRUE(writes.empty());
}

TEST_F(DescriptorTest, AnInputThatCannotBeStoredIsRefused)
{
    const std::set<std::string> before = openDescriptors();
    writes = {2, -ENOSPC};
    EXPECT_THROW(openInput("text"), std::system_error);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DescriptorTest, AnInputIsSealedAgainstExecution)
{
    openInput("text");
    EXPECT_EQ(memoryFileFlags, std::vector{MFD_CLOEXEC | noExecSeal});
}

TEST_F(DescriptorTest, AnInputIsStoredUnsealedWhereTheKernelDoesNotKnowTheSeal)
{
    sealError = EINVAL;
    EXPECT_EQ(contents(openInput("text")), "text");
    EXPECT_EQ(memoryFileFlags, (std::vector{MFD_CLOEXEC | noExecSeal, MFD_CLOEXEC}));
}

TEST_F(DescriptorTest, AnEarlierErrorMeansNothingToAHostThatHasClosedDescriptor0)
{
    const ClosedStandard closed({STDIN_FILENO});
    errno = EINVAL;
    EXPECT_EQ(contents(openInput("text")), "text");
    EXPECT_EQ(memoryFileFlags, std::vector{MFD_CLOEXEC | noExecSeal});
    errno = EINVAL;
    EXPECT_TRUE(isPrivate(openPipe().readEnd));
}

TEST_F(DescriptorTest, AHostWithoutRoomAboveTheStandardDescriptorsHasTooManyFiles)
{
    // A sanitizer checks the type of the first such exception, and needs descriptors to do it.
    writes = {-ENOSPC};
    EXPECT_THROW(openInput("text"), std::system_error);

    EXPECT_TRUE(holdsInChild([] {
        rlimit limit{};
        const ClosedStandard closed({STDIN_FILENO});
        if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
            return false;
        limit.rlim_cur = 3;
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return false;
        try {
            openInput("");
        } catch (const std::system_error& error) {
            return error.code().value() == EMFILE;
        }
        return false;
    }));
}

TEST_F(DescriptorTest, AnInputThatFindsNoMemoryFileIsRefusedAtOnce)
{
    sealError = EMFILE;
    EXPECT_THROW(openInput("text"), std::system_error);
    EXPECT_EQ(memoryFileFlags.size(), 1U);
}

TEST_F(DescriptorTest, AnInputBeyondTheHostsFileSizeLimitIsRefusedWithoutASignal)
{
    EXPECT_TRUE(holdsInChild([] {
        const rlimit limit{4, 4};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0 || contents(openInput("text")) != "text")
            return false;
        try {
            openInput("text.");
        } catch (const std::system_error& error) {
            return error.code().value() == EFBIG;
        }
        return false;
    }));
}

} // namespace
