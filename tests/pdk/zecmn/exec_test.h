#ifndef EXEC_TEST_H
#define EXEC_TEST_H

#include <chrono>
#include <string>
#include <vector>

#include "pdk/include/czetracelog.h"
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
    int exec(const std::string& command, const Settings& settings = {});

    /// The message of the exception that the run ends in; empty when there is none.
    std::string refusal(const std::string& command, const Settings& settings = {});

    /// Runs a program with a bound of one word, so that it is ended when it prints.
    int execToFirstWord(const std::string& command, std::chrono::nanoseconds grace);

    /// Expects that a program which ignores SIGTERM ends, and its child, which does the same.
    void expectEndDespiteIgnoredTerm();

    /// Every way that a run can end.
    void expectEveryEnding();

    const Lines& output() const { return m_output; }
    std::chrono::steady_clock::duration took() const { return m_took; }
    void traceTo(const koze_pdk_4_4::CZeTraceLogHandle& log) { m_log = log; }

private:
    Lines m_output;
    std::chrono::steady_clock::duration m_took{};
    koze_pdk_4_4::CZeTraceLogHandle m_log;
};

#endif
