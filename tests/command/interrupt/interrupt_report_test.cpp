// What an interrupt reports of tools that it could not end. command::endTools is replaced here.
#include "interrupt/interrupt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <new>

#include <fcntl.h>
#include <unistd.h>

#include "interrupt/end_tools.h"
#include "tests/support/process.h"

namespace {

std::function<bool()> endOfTools;

constexpr char report[] = "dmpclaim: a tool may still run: it did not end, or could not be found; "
                          "see 'ps -C kodmpadm,kodisk'\n";

} // namespace

bool command::endTools(const StopRequest& /*stop*/)
{
    return endOfTools();
}

namespace {

/// What is written to standard error when the tools end like this.
std::string reportAfter(std::function<bool()> end)
{
    endOfTools = std::move(end);
    command::StopRequest stop;
    const command::Interrupt interrupt(stop, [] {});
    testing::internal::CaptureStderr();
    interrupt.endTools();
    return testing::internal::GetCapturedStderr();
}

TEST(InterruptReport, TellsOfToolsThatMayStillRun)
{
    EXPECT_EQ(reportAfter([] { return true; }), "");
    EXPECT_EQ(reportAfter([] { return false; }), report);
}

TEST(InterruptReport, TellsOfToolsThatCouldNotBeLookedForWithoutMemory)
{
    EXPECT_EQ(reportAfter([]() -> bool { throw std::bad_alloc(); }), report);
}

TEST(InterruptReport, IsGivenUpWhenStandardErrorTakesNoOutput)
{
    endOfTools = [] { return false; };
    const Pipe pipe = makePipe();
    fcntl(pipe.writer.number(), F_SETFL, O_NONBLOCK);
    while (write(pipe.writer.number(), "x", 1) == 1)
        continue;
    fcntl(pipe.writer.number(), F_SETFL, 0);
    command::StopRequest stop;
    const command::Interrupt interrupt(stop, [] {});
    const Descriptor before(dup(STDERR_FILENO));
    dup2(pipe.writer.number(), STDERR_FILENO);
    const auto begin = std::chrono::steady_clock::now();
    interrupt.endTools();
    const auto passed = std::chrono::steady_clock::now() - begin;
    dup2(before.number(), STDERR_FILENO);
    EXPECT_GE(passed, std::chrono::milliseconds(100));
    EXPECT_LT(passed, std::chrono::seconds(10));
}

} // namespace
