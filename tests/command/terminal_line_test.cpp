#include "command/terminal_line.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <pty.h>

#include "tests/support/process.h"

namespace {

using command::TerminalLine;

/// A terminal of 20 columns that passes bytes on as they are.
class TerminalLineTest : public testing::Test {
protected:
    void SetUp() override
    {
        int master = -1;
        int slave = -1;
        const winsize size{24, 20, 0, 0};
        ASSERT_EQ(openpty(&master, &slave, nullptr, nullptr, &size), 0);
        screen = Descriptor(master);
        terminal = Descriptor(slave);
        fcntl(master, F_SETFL, O_NONBLOCK);
    }

    /// What has been written since the last call.
    std::string written() const
    {
        std::string text;
        char block[4096];
        for (ssize_t size = 0; (size = read(screen.number(), block, sizeof block)) > 0;)
            text.append(block, static_cast<std::size_t>(size));
        return text;
    }

    Descriptor screen;
    Descriptor terminal;
};

TEST_F(TerminalLineTest, ATextTakesThePlaceOfTheOneBefore)
{
    TerminalLine line(terminal.number());
    line.show("one");
    EXPECT_EQ(written(), "\rone\x1b[K");
    line.show("two");
    EXPECT_EQ(written(), "\rtwo\x1b[K");
}

TEST_F(TerminalLineTest, TheSameTextIsWrittenOnce)
{
    TerminalLine line(terminal.number());
    line.show("one");
    line.show("one");
    EXPECT_EQ(written(), "\rone\x1b[K");
}

TEST_F(TerminalLineTest, TheLastColumnStaysFree)
{
    TerminalLine line(terminal.number());
    line.show("1234567890123456789");
    EXPECT_EQ(written(), "\r1234567890123456789\x1b[K");
    line.show("abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(written(), "\rabcdefghijklmnopqrs\x1b[K");
}

TEST_F(TerminalLineTest, ATerminalWithoutAWidthHas80Columns)
{
    const winsize none{};
    ASSERT_EQ(ioctl(terminal.number(), TIOCSWINSZ, &none), 0);
    TerminalLine line(terminal.number());
    line.show(std::string(100, 'x'));
    EXPECT_EQ(written(), "\r" + std::string(79, 'x') + "\x1b[K");
}

TEST_F(TerminalLineTest, OnlyAShownLineIsErased)
{
    TerminalLine line(terminal.number());
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
    TerminalLine line(terminal.number());
    line.show("one");
    line.close();
    line.show("two");
    EXPECT_EQ(written(), "\rone\x1b[K\r\x1b[K");
}

TEST_F(TerminalLineTest, ATerminalThatTakesNoOutputHoldsNobodyUp)
{
    fcntl(terminal.number(), F_SETFL, O_NONBLOCK);
    while (write(terminal.number(), "x", 1) == 1)
        continue;
    fcntl(terminal.number(), F_SETFL, 0);
    TerminalLine line(terminal.number());
    std::thread blocked([&line] { line.show("one"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    line.close();
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
