#include "output/output_stream.h"

#include <chrono>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>

#include <gtest/gtest.h>

#include "captured_output.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

using command::OutputStream;
using namespace std::chrono_literals;

namespace {

TEST(OutputStream, WritesOutWhatIsFlushedOrFillsTheBuffer)
{
    CapturedOutput output;
    output.stream().write("a");
    EXPECT_EQ(output.written(), "");
    output.stream().flush();
    EXPECT_EQ(output.written(), "a");
    output.stream().write(std::string(100'000, 'x'));
    EXPECT_EQ(output.written().size(), 100'001U);
}

TEST(OutputStream, OnATerminalEachWriteIsSeenAtOnce)
{
    const Terminal terminal;
    OutputStream output(terminal.descriptor());
    output.write("a");
    EXPECT_EQ(terminal.written(), "a");
}

TEST(OutputStream, HasTheWidthOfTheTerminal)
{
    const Terminal terminal({24, 47, 0, 0});
    EXPECT_EQ(OutputStream(terminal.descriptor()).width(), 47U);
    const Terminal unknown({0, 0, 0, 0});
    EXPECT_EQ(OutputStream(unknown.descriptor()).width(), 79U);
    CapturedOutput file;
    EXPECT_EQ(file.stream().width(), 79U);
}

TEST(OutputStream, HasTheHeightOfTheTerminal)
{
    const Terminal terminal({47, 80, 0, 0});
    EXPECT_EQ(OutputStream(terminal.descriptor()).height(), 47U);
    const Terminal unknown({0, 0, 0, 0});
    EXPECT_EQ(OutputStream(unknown.descriptor()).height(), 24U);
    CapturedOutput file;
    EXPECT_EQ(file.stream().height(), 24U);
}

TEST(OutputStream, AnEarlyEndMakesItWholeAndIgnoresLaterWrites)
{
    CapturedOutput output;
    output.stream().write("[1", "]");
    output.stream().write(",2");
    output.stream().end(1s);
    EXPECT_EQ(output.written(), "[1,2]");
    output.stream().write(",3");
    output.stream().end(1s);
    output.stream().flush();
    EXPECT_EQ(output.written(), "[1,2]");
}

TEST(OutputStream, AnEarlyEndGivesUpAPipeThatNobodyReads)
{
    const Pipe pipe = makePipe();
    ASSERT_EQ(fcntl(pipe.writer.number(), F_SETPIPE_SZ, 4096), 4096);
    OutputStream output(pipe.writer.number());
    output.write(std::string(10'000, 'x'));
    const auto begin = std::chrono::steady_clock::now();
    output.end(100ms);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
}

TEST(OutputStream, AnEarlyEndGivesUpWhatTheSystemRefuses)
{
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    OutputStream output(full.number());
    output.write("a");
    output.end(1s);
    EXPECT_NO_THROW(output.flush()); // ended
}

TEST(OutputStream, AnEarlyEndGivesUpAWriteThatHangs)
{
    const Pipe pipe = makePipe();
    OutputStream output(pipe.writer.number());
    std::thread writer([&] { output.write(std::string(200'000, 'x')); });
    char block[4096];
    ASSERT_EQ(read(pipe.reader.number(), block, sizeof block), 4096); // the writer has begun
    output.end(100ms);
    std::size_t size = 4096;
    while (size < 200'000)
        size += static_cast<std::size_t>(read(pipe.reader.number(), block, sizeof block));
    writer.join();
}

TEST(OutputStream, WaitsForADescriptorThatDoesNotBlock)
{
    const Pipe pipe = makePipe();
    fcntl(pipe.writer.number(), F_SETFL, O_NONBLOCK);
    std::size_t received = 0;
    std::thread reader([&] {
        char block[4096];
        pollfd input{pipe.reader.number(), POLLIN, 0};
        while (received < 200'000 && poll(&input, 1, 10'000) == 1)
            received += static_cast<std::size_t>(read(input.fd, block, sizeof block));
    });
    OutputStream output(pipe.writer.number());
    output.write(std::string(200'000, 'x'));
    reader.join();
    EXPECT_EQ(received, 200'000U);
}

TEST(OutputStream, ThrowsWhatTheSystemRefuses)
{
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    OutputStream output(full.number());
    output.write("a");
    EXPECT_THROW(output.flush(), std::system_error);
    output.end(1s);
}

} // namespace
