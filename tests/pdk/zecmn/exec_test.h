#ifndef EXEC_TEST_H
#define EXEC_TEST_H

#include <chrono>
#include <string>
#include <vector>

#include "pdk/include/czeexecpipe.h"
#include "pdk/zecmn/run.h"
#include "runs_programs.h"

using Lines = std::vector<std::string>;

/// The optional settings of a run.
struct Settings {
    int streams = 1;
    std::string directory;
    unsigned long limit = 60;
    std::string user;
    std::string environment;
    std::string input;
};

/// Base of the tests that run helper programs through the library.
class ExecTest : public RunsPrograms {
protected:
    int exec(const std::string& command, const Settings& settings = {})
    {
        koze_pdk_4_4::CZeExecPipePosix runner(settings.streams);
        runner.registerTraceLog(m_log);
        const auto start = std::chrono::steady_clock::now();
        m_output.clear();
        const int result =
            runner.Exec(commandLine(command), m_output, settings.directory, settings.limit,
                        settings.user, mark() + '\n' + settings.environment, settings.input);
        m_took = std::chrono::steady_clock::now() - start;
        return result;
    }

    /// The message of the exception that the run ends in; empty when there is none.
    std::string refusal(const std::string& command, const Settings& settings = {})
    {
        try {
            exec(command, settings);
            return {};
        } catch (const koze_pdk_4_4::EZeExecPipe& reason) {
            return reason.what();
        }
    }

    /// Runs a program with a bound of one word, so that it is ended when it prints.
    int execToFirstWord(const std::string& command, std::chrono::nanoseconds grace)
    {
        koze_pdk_4_4::runner::Program program;
        program.arguments = koze_pdk_4_4::runner::splitCommand(commandLine(command));
        program.environment = {mark()};
        Lines lines;
        const auto start = std::chrono::steady_clock::now();
        const int result = koze_pdk_4_4::runner::run(
            program, "", {std::chrono::seconds(60), grace, 1000, 4}, lines, lines);
        m_took = std::chrono::steady_clock::now() - start;
        return result;
    }

    /// Expects that a program which ignores SIGTERM ends, and its child, which does the same.
    void expectEndDespiteIgnoredTerm()
    {
        EXPECT_EQ(execToFirstWord("ignore_term", std::chrono::milliseconds(100)),
                  koze_pdk_4_4::CZeExecPipeBase::boundExceeded);
        expectNobodyLeft();
    }

    /// Every way that a run can end.
    void expectEveryEnding()
    {
        using koze_pdk_4_4::CZeExecPipeBase;
        EXPECT_EQ(exec("print 0 1 a\\n"), 0);
        EXPECT_EQ(output(), Lines({"a"}));
        EXPECT_EQ(exec("print 3 2 why\\n"), 3);
        EXPECT_EQ(output(), Lines({"why"}));
        EXPECT_EQ(exec("exit_with 3"), 3);
        EXPECT_EQ(exec("die_by 9"), 1009);
        EXPECT_EQ(exec("leave_child 4"), 4);
        EXPECT_EQ(exec("close_early"), 7);
        EXPECT_EQ(exec("lines 1 67108864"), CZeExecPipeBase::boundExceeded);
        EXPECT_NE(refusal("/no/such/program"), "");
        expectEndDespiteIgnoredTerm();
    }

    const Lines& output() const { return m_output; }
    std::chrono::steady_clock::duration took() const { return m_took; }
    void traceTo(const koze_pdk_4_4::CZeTraceLogHandle& log) { m_log = log; }

private:
    Lines m_output;
    std::chrono::steady_clock::duration m_took{};
    koze_pdk_4_4::CZeTraceLogHandle m_log;
};

#endif
