#include "exec_test.h"

#include "pdk/include/czeexecpipe.h"
#include "pdk/zecmn/run.h"

using koze_pdk_4_4::CZeExecPipeBase;

int ExecTest::exec(const std::string& command, const Settings& settings)
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

std::string ExecTest::refusal(const std::string& command, const Settings& settings)
{
    try {
        exec(command, settings);
        return {};
    } catch (const koze_pdk_4_4::EZeExecPipe& reason) {
        return reason.what();
    }
}

int ExecTest::execToFirstWord(const std::string& command, std::chrono::nanoseconds grace)
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

void ExecTest::expectEndDespiteIgnoredTerm()
{
    EXPECT_EQ(execToFirstWord("ignore_term", std::chrono::milliseconds(100)),
              CZeExecPipeBase::boundExceeded);
    expectNobodyLeft();
}

void ExecTest::expectEveryEnding()
{
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
