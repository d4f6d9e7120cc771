// What the runner says: why a program cannot be run, and the lines of its trace.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "exec_test.h"
#include "tests/support/recording_log.h"
#include "tests/support/throwing_log.h"

using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::EZeExecPipe;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

class Exec : public ExecTest {};

// Programs that cannot be run.

class FileOf {
public:
    FileOf(std::string path, const std::string& text, mode_t mode) : m_path(std::move(path))
    {
        std::ofstream(m_path) << text;
        chmod(m_path.c_str(), mode);
    }
    FileOf(const FileOf&) = delete;
    FileOf& operator=(const FileOf&) = delete;
    ~FileOf() { unlink(m_path.c_str()); }

private:
    std::string m_path;
};

TEST_F(Exec, SaysWhichProgramCannotBeRunAndWhy)
{
    const std::string path = testing::TempDir() + mark();
    const std::string begin = "cannot run " + path + ": ";
    EXPECT_EQ(refusal(path + " argument"),
              begin + "it or its interpreter is missing: No such file or directory");
    {
        const FileOf script(path, "#!/no/such/interpreter\n", 0700);
        EXPECT_EQ(refusal(path),
                  begin + "it or its interpreter is missing: No such file or directory");
    }
    {
        const FileOf text(path, "no program", 0700);
        EXPECT_EQ(refusal(path), begin + "it cannot be executed: Exec format error");
    }
    {
        const FileOf text(path, "#!/bin/sh\n", 0600);
        EXPECT_EQ(refusal(path), begin + "it cannot be executed: Permission denied");
    }
    EXPECT_EQ(refusal("/tmp"), "cannot run /tmp: it cannot be executed: Permission denied");
    EXPECT_EQ(refusal("/bin/true " + std::string(200000, 'x')),
              "cannot run /bin/true: it cannot be executed: Argument list too long");
}

TEST_F(Exec, NamesTheProgramWithoutTheSpacesAroundIt)
{
    CZeExecPipePosix runner(1);
    Lines lines;
    try {
        runner.Exec("  /no/such/program  argument", lines, "", 60, "", "", "");
        ADD_FAILURE();
    } catch (const EZeExecPipe& reason) {
        EXPECT_THAT(reason.what(), StartsWith("cannot run /no/such/program: it or"));
    }
}

TEST_F(Exec, SaysWhichSettingCannotBeMet)
{
    const std::string begin = "cannot run " + commandLine("lines") + ": ";
    Settings settings;
    settings.directory = "/no/such/directory";
    EXPECT_EQ(refusal("lines", settings),
              begin + "cannot enter its directory: No such file or directory");
    settings = {};
    settings.user = "no such user";
    EXPECT_EQ(refusal("lines", settings), begin + "there is no user no such user");
    settings = {};
    settings.environment = "value";
    EXPECT_EQ(refusal("lines", settings), begin + "no variable: value");
    EXPECT_EQ(refusal(""), "cannot run : the command is empty");
    EXPECT_EQ(refusal("/bin/a" + std::string(1, '\0')),
              "cannot run " + std::string("/bin/a: the command holds a NUL byte"));
}

TEST_F(Exec, WantsAnAbsolutePath)
{
    CZeExecPipePosix runner(1);
    Lines lines;
    for (const char* command : {"true", "bin/true", "./true", "  true"})
        EXPECT_THROW(runner.Exec(command, lines, "", 60, "", "", ""), EZeExecPipe);
}

TEST_F(Exec, RunsAProgramAfterOneThatCannotBeRun)
{
    EXPECT_NE(refusal("/no/such/program"), "");
    EXPECT_EQ(exec("exit_with 0"), 0);
}

TEST_F(Exec, CannotBecomeAnotherUserWithoutPermission)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give its permission up";
    // In a child process, because the change cannot be undone.
    EXPECT_EXIT(
        {
            const int given = setresuid(65534, 65534, 65534);
            Settings settings;
            settings.user = "root";
            const std::string reason = refusal("/bin/true", settings);
            fprintf(stderr, "%d %s", given, reason.c_str());
            _exit(0);
        },
        testing::ExitedWithCode(0),
        "0 cannot run /bin/true: cannot become its user: Operation not permitted");
}

// The trace.

class ExecTrace : public ExecTest {
protected:
    void SetUp() override { traceTo(m_log.handle()); }
    void TearDown() override
    {
        traceTo({});
        ExecTest::TearDown();
    }

    /// Matches the line `Command [...] took N ms and ...`.
    static auto Took(int level, const std::string& command, const std::string& ending)
    {
        return AllOf(
            Field(&Line::level, level),
            Field(&Line::text, AllOf(StartsWith("Command [" + commandLine(command) + "] took "),
                                     MatchesRegex(".*\\] took [0-9]+ ms and .*"),
                                     EndsWith(" ms and " + ending))));
    }

    RecordingLog m_log;
};

TEST_F(ExecTrace, SaysHowLongACommandTookAndHowItEnded)
{
    exec("exit_with 0");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAre(Took(6, "exit_with 0", "ended with exit status 0.")));
    exec("exit_with 255");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAre(Took(2, "exit_with 255", "ended with exit status 255.")));
    exec("die_by 9");
    EXPECT_THAT(m_log.takeLines(), ElementsAre(Took(2, "die_by 9", "was ended by signal 9.")));
    exec("flood 1 100");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAre(Took(2, "flood 1 100",
                                 "was ended: it printed more than 268435456 bytes, or a line of "
                                 "more than 1048576.")));
}

TEST_F(ExecTrace, SaysThatTheLimitPassed)
{
    Settings second;
    second.limit = 1;
    exec("hang", second);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(took()).count();
    const std::vector<Line> lines = m_log.takeLines();
    EXPECT_THAT(lines, ElementsAre(Took(2, "hang", "was ended: its limit of 1 seconds passed.")));
    long traced = 0;
    ASSERT_EQ(std::sscanf(lines[0].text.c_str(), "Command [%*[^]]] took %ld", &traced), 1);
    EXPECT_GE(traced, 1000);
    EXPECT_LE(traced, milliseconds);
}

TEST_F(ExecTrace, SaysWhatASuccessfulCommandWarnedOf)
{
    const std::string command = "print 0 2 a\\nb\\n";
    exec(command);
    const std::string begin = "Command [" + commandLine(command) + "] warns: ";
    EXPECT_THAT(m_log.takeLines(), ElementsAre(Line{2, begin + "a"}, Line{2, begin + "b"},
                                               Took(6, command, "ended with exit status 0.")));
}

TEST_F(ExecTrace, LeavesToTheCallerWhyACommandFailed)
{
    exec("print 3 2 why\\n");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAre(Took(2, "print 3 2 why\\n", "ended with exit status 3.")));
}

TEST_F(ExecTrace, SaysWhyACommandCannotBeRun)
{
    refusal("/no/such/program a");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAre(Line{2, "Command [/no/such/program a] cannot be run: it or its "
                                    "interpreter is missing: No such file or directory."}));
}

TEST_F(ExecTrace, LetsThroughWhatTheLogThrows)
{
    traceTo(throwingLog(""));
    EXPECT_THROW(exec("exit_with 0"), std::logic_error);
    EXPECT_THROW(exec("/no/such/program"), std::logic_error);
}

} // namespace
