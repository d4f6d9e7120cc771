#include "cli/terminal_line.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/process.h"
#include "tests/support/terminal.h"

namespace {

std::atomic<int> writes{0};

} // namespace

/// Counts the calls that were begun. A terminal line is locked during each.
extern "C" ssize_t write(int descriptor, const void* bytes, std::size_t size)
{
    ++writes;
    return syscall(SYS_write, descriptor, bytes, size);
}

namespace {

using command::TerminalLine;

class TerminalLineTest : public testing::Test {
protected:
    std::string written() const { return terminal.written(); }

    Terminal terminal{{24, 20, 0, 0}};
};

TEST_F(TerminalLineTest, ATextTakesThePlaceOfTheOneBefore)
{
    TerminalLine line(terminal.descriptor());
    line.show("one");
    EXPECT_EQ(written(), "\rone\x1b[K");
    line.show("two");
    EXPECT_EQ(written(), "\rtwo\x1b[K");
}

TEST_F(TerminalLineTest, TheSameTextIsWrittenOnce)
{
    TerminalLine line(terminal.descriptor());
    line.show("one");
    line.show("one");
    EXPECT_EQ(written(), "\rone\x1b[K");
}

TEST_F(TerminalLineTest, TheLastColumnStaysFree)
{
    TerminalLine line(terminal.descriptor());
    line.show("1234567890123456789");
    EXPECT_EQ(written(), "\r1234567890123456789\x1b[K");
    line.show("abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(written(), "\rabcdefghijklmnopqrs\x1b[K");
}

TEST_F(TerminalLineTest, ATerminalWithoutAWidthHas80Columns)
{
    const winsize none{};
    ASSERT_EQ(ioctl(terminal.descriptor(), TIOCSWINSZ, &none), 0);
    TerminalLine line(terminal.descriptor());
    line.show(std::string(100, 'x'));
    EXPECT_EQ(written(), "\r" + std::string(79, 'x') + "\x1b[K");
}

TEST_F(TerminalLineTest, OnlyAShownLineIsErased)
{
    TerminalLine line(terminal.descriptor());
    line.erase();
    EXPECT_EQ(written(), "");
    line.show("one");
    line.erase();
    line.erase();
    EXPECT_EQ(written(), "\rone\x1b[K\r\x1b[K");
    line.show("one");
    EXPECT_EQ(written(), "\rone\x1b[K");
}

TEST_F(TerminalLineTest, AClosedLineIsEmptyForGood)
{
    TerminalLine line(terminal.descriptor());
    line.show("one");
    line.close();
    line.show("two");
    EXPECT_EQ(written(), "\rone\x1b[K\r\x1b[K");
}

TEST_F(TerminalLineTest, ClosingDoesNotWaitForATerminalThatTakesNoOutput)
{
    fcntl(terminal.descriptor(), F_SETFL, O_NONBLOCK);
    while (write(terminal.descriptor(), "x", 1) == 1)
        continue;
    fcntl(terminal.descriptor(), F_SETFL, 0);
    TerminalLine line(terminal.descriptor());
    writes = 0;
    std::thread blocked([&line] { line.show("one"); });
    while (writes == 0)
        std::this_thread::yield();
    line.close();
    EXPECT_EQ(writes, 1);
    while (written().find("one") == std::string::npos)
        std::this_thread::yield();
    blocked.join();
}

TEST(TerminalLine, NothingIsWrittenUnlessItIsATerminal)
{
    const Pipe pipe = makePipe();
    TerminalLine line(pipe.writer.number());
    line.show("one");
    line.erase();
    line.close();
    fcntl(pipe.reader.number(), F_SETFL, O_NONBLOCK);
    char byte = 0;
    EXPECT_EQ(read(pipe.reader.number(), &byte, 1), -1);
}

} // namespace
