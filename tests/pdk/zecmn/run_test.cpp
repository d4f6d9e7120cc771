#include "pdk/zecmn/run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <numeric>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"
#include "pdk/zecmn/line_collector.h"
#include "runs_programs.h"

using koze_pdk_4_4::CZeExecPipeBase;
using koze_pdk_4_4::runner::childEnvironment;
using koze_pdk_4_4::runner::Limits;
using koze_pdk_4_4::runner::Program;
using koze_pdk_4_4::runner::splitCommand;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

/// Long enough for any machine; a test that waits for it has failed.
constexpr std::chrono::nanoseconds never = 60s;
constexpr Limits ample{never, never, 1 << 20, 1 << 16};

/// Ends a program as soon as it prints a word.
constexpr Limits speechless{never, never, 1 << 20, 4};

class RunTest : public RunsPrograms {
protected:
    int run(const std::string& command, const Limits& limits = ample)
    {
        return runWith(command, limits, m_errors);
    }

    int runAsOneStream(const std::string& command) { return runWith(command, ample, m_output); }

    const Lines& output() const { return m_output; }
    const Lines& errors() const { return m_errors; }
    Clock::duration took() const { return m_took; }

private:
    int runWith(const std::string& command, const Limits& limits, Lines& errors)
    {
        m_output.clear();
        m_errors.clear();
        Program program;
        program.arguments = splitCommand(commandLine(command));
        program.environment = childEnvironment(environ, mark());
        const auto start = Clock::now();
        const int result = koze_pdk_4_4::runner::run(program, "", limits, m_output, errors);
        m_took = Clock::now() - start;
        return result;
    }

    Lines m_output;
    Lines m_errors;
    Clock::duration m_took{};
};

TEST_F(RunTest, DeliversBothStreamsAndTheStatus)
{
    EXPECT_EQ(run("print 3 1 a\\nb\\n 2 c\\n 1 d"), 3);
    EXPECT_EQ(output(), Lines({"a", "b", "d"}));
    EXPECT_EQ(errors(), Lines({"c"}));
}

TEST_F(RunTest, OneListForBothStreamsKeepsTheirOrder)
{
    EXPECT_EQ(runAsOneStream("print 0 1 a\\n 2 b\\n 1 c\\n 2 d"), 0);
    EXPECT_EQ(output(), Lines({"a", "b", "c", "d"}));
}

TEST_F(RunTest, ALimitOf300MillisecondsReturnsWithin350)
{
    auto best = Clock::duration::max();
    for (int attempt = 0; attempt < 10 && best > 350ms; ++attempt) {
        EXPECT_EQ(run("hang", {300ms, never, 1000, 1000}), CZeExecPipeBase::deadlinePassed);
        expectNobodyLeft();
        EXPECT_GE(took(), 300ms);
        best = std::min(best, took());
    }
    EXPECT_LE(best, 350ms);
}

TEST_F(RunTest, PastTheLimitThereIsWhatWasPrintedBefore)
{
    // The limit grows until it suffices to start the program and print its first word.
    for (auto limit = 300ms; limit < never && output().empty(); limit *= 2)
        EXPECT_EQ(run("hang", {limit, never, 1000, 1000}), CZeExecPipeBase::deadlinePassed);
    EXPECT_EQ(output(), Lines({"hanging"}));
}

TEST_F(RunTest, AFloodDoesNotOutlastTheLimit)
{
    EXPECT_EQ(run("flood 1 100", {300ms, never, std::size_t{1} << 40, 1000}),
              CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, WhoIgnoresSigtermIsKilledAfterTheGrace)
{
    Limits limits = speechless;
    limits.grace = 100ms;
    EXPECT_EQ(run("ignore_term", limits), CZeExecPipeBase::boundExceeded);
    expectNobodyLeft();
    EXPECT_GE(took(), 100ms);
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, WhoHeedsSigtermIsNotWaitedForAnyLonger)
{
    EXPECT_EQ(run("hang", speechless), CZeExecPipeBase::boundExceeded);
    expectNobodyLeft();
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, TheProgramAndWhoKeepsAStreamHaveTheGraceToTidyUp)
{
    const std::string file = testing::TempDir() + mark();
    for (const char* stream : {" 0", " 1", " 2"}) {
        const auto busy = threadTime();
        EXPECT_EQ(run("tidy_up " + file + stream, speechless), CZeExecPipeBase::boundExceeded);
        expectNobodyLeft();
        EXPECT_LT(took(), never);
        EXPECT_LT(threadTime() - busy, 100ms);
        EXPECT_EQ(unlink(file.c_str()), 0) << stream;
    }
}

TEST_F(RunTest, AStoppedProgramHearsSigtermToo)
{
    EXPECT_EQ(run("stop", {500ms, never, 1000, 1000}), CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, AProgramCannotLeaveItsGroupBeforeTheLimit)
{
    const std::string hostsGroup = std::to_string(getpgrp());
    for (auto limit = 300ms; limit < never && output().empty(); limit *= 2)
        EXPECT_EQ(run("leave_group " + hostsGroup, {limit, never, 1000, 1000}),
                  CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
    expectNoChild();
    EXPECT_EQ(output(), Lines({"kept out", "made no group", "made no session"}));
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, WhatHasLeftTheSessionIsLeftBehind)
{
    Limits limits = speechless;
    limits.grace = 100ms;
    EXPECT_EQ(run("leave_session", limits), CZeExecPipeBase::boundExceeded);
    EXPECT_LT(took(), 20s);
    const std::vector<std::string> left = processesWith(mark());
    ASSERT_EQ(left.size(), 1);
    kill(std::stoi(left.front()), SIGKILL);
}

TEST_F(RunTest, AFloodEndsAtTheBound)
{
    for (const char* flood : {"flood 1 100", "flood 2 100", "flood 1 0"}) {
        EXPECT_EQ(run(flood), CZeExecPipeBase::boundExceeded);
        expectNobodyLeft();
        std::size_t kept = 0;
        for (const Lines& lines : {output(), errors()})
            for (const std::string& line : lines)
                kept += koze_pdk_4_4::runner::cost(line);
        EXPECT_LE(kept, ample.outputBytes);
        EXPECT_GT(kept, ample.outputBytes - 200);
    }
}

TEST_F(RunTest, ALineThatNeverEndsEndsAtTheBound)
{
    EXPECT_EQ(run("flood 1 1000000"), CZeExecPipeBase::boundExceeded);
    EXPECT_EQ(output(), Lines());
}

TEST_F(RunTest, ABoundPassedByTheLastWordsCountsToo)
{
    // Until the program ends, five characters may be a line of four and its carriage return.
    for (const char* last : {"long_line", "abcde"}) {
        EXPECT_EQ(run(std::string("print 0 1 a\\n") + last, speechless),
                  CZeExecPipeBase::boundExceeded);
        EXPECT_EQ(output(), Lines({"a"}));
    }
}

TEST_F(RunTest, AGrandchildThatKeepsThePipeIsNotWaitedFor)
{
    EXPECT_EQ(run("leave_child 0"), 0);
    EXPECT_EQ(output(), Lines({"leaving"}));
    EXPECT_EQ(run("leave_child 3"), 3);
    EXPECT_EQ(output(), Lines({"leaving"}));
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, AGrandchildIsLeftAlone)
{
    const std::string file = testing::TempDir() + mark();
    EXPECT_EQ(run("leave_child 0 " + file), 0);
    awaitNobodyLeft();
    EXPECT_EQ(unlink(file.c_str()), 0);
}

TEST_F(RunTest, AGrandchildThatGoesOnPrintingIsNotWaitedFor)
{
    Limits limits = ample;
    limits.outputBytes = std::size_t{1} << 40;
    EXPECT_EQ(run("leave_child 0 chatter", limits), 0);
    EXPECT_EQ(output().front(), "leaving");
    EXPECT_LT(took(), never);
}

TEST_F(RunTest, AProgramThatClosesItsStreamsIsWaitedFor)
{
    EXPECT_EQ(run("close_early"), 7);
    EXPECT_EQ(output(), Lines({"closing"}));
}

TEST_F(RunTest, WaitingCostsNoProcessorTime)
{
    const auto busy = threadTime();
    for (const char* command : {"hang", "stop", "close_early"})
        run(command, {1s, 100ms, 1000, 1000});
    EXPECT_LT(threadTime() - busy, 500ms);
}

TEST_F(RunTest, AProgramThatClosesItsStreamsHasALimitToo)
{
    EXPECT_EQ(run("close_early", {20ms, never, 1000, 1000}), CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
}

/// A copy of a program that cannot be opened for a while: open blocks because of a lease, as on a
/// file server that does not answer.
class LeasedProgram {
public:
    explicit LeasedProgram(const std::string& path)
        : m_path(path), m_default(std::signal(SIGIO, SIG_IGN))
    {
        std::filesystem::copy_file(commandLine("exit_with"), path);
        m_descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_EQ(fcntl(m_descriptor, F_SETLEASE, F_WRLCK), 0);
    }
    LeasedProgram(const LeasedProgram&) = delete;
    LeasedProgram& operator=(const LeasedProgram&) = delete;
    ~LeasedProgram()
    {
        close(m_descriptor);
        unlink(m_path.c_str());
        std::signal(SIGIO, m_default);
    }

private:
    std::string m_path;
    void (*m_default)(int);
    int m_descriptor = -1;
};

TEST_F(RunTest, AProgramThatCannotEvenStartHasALimitToo)
{
    const std::string path = testing::TempDir() + mark();
    const LeasedProgram leased(path);
    EXPECT_EQ(run(path + " 0", {300ms, never, 1000, 1000}), CZeExecPipeBase::deadlinePassed);
    EXPECT_GE(took(), 300ms);
    EXPECT_LT(took(), 20s);
    expectNoChild();
}

} // namespace
