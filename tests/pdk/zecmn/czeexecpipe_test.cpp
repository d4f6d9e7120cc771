#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <stdexcept>
#include <type_traits>

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include "exec_test.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeExecPipeBase;
using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::EZeExecPipe;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace {

class Exec : public ExecTest {};

TEST_F(Exec, ReturnsTheExitStatus)
{
    EXPECT_EQ(exec("exit_with 0"), 0);
    EXPECT_EQ(exec("exit_with 1"), 1);
    EXPECT_EQ(exec("exit_with 127"), 127);
    EXPECT_EQ(exec("exit_with 255"), 255);
}

TEST_F(Exec, ReturnsTheSignalOfAKilledProgram)
{
    EXPECT_EQ(exec("die_by 9"), 1009);
    EXPECT_EQ(output(), Lines({"dying"}));
    EXPECT_EQ(exec("die_by 15"), 1015);
    EXPECT_EQ(exec("die_by 64"), 1064);
}

TEST_F(Exec, EveryResultOfItsOwnDiffersFromEveryStatus)
{
    const std::vector<int> results = {
        CZeExecPipeBase::killedBySignal + 1, CZeExecPipeBase::killedBySignal + 64,
        CZeExecPipeBase::deadlinePassed, CZeExecPipeBase::boundExceeded,
        CZeExecPipeBase::statusUnknown};
    EXPECT_THAT(results, Each(testing::Gt(255)));
    EXPECT_TRUE(std::is_sorted(results.begin(), results.end(), std::less_equal<>()));
}

TEST_F(Exec, DeliversTheLinesInOrderWithoutTheirEnds)
{
    EXPECT_EQ(exec("print 0 1 a\\n\\nb\\r\\nlast"), 0);
    EXPECT_EQ(output(), Lines({"a", "", "b", "last"}));
}

TEST_F(Exec, KeepsNulBytes)
{
    EXPECT_EQ(exec("print 0 1 a\\0b\\n\\0"), 0);
    EXPECT_EQ(output(), Lines({std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST_F(Exec, DeliversATableOfAMillionRows)
{
    EXPECT_EQ(exec("lines 1000000 60"), 0);
    EXPECT_EQ(output(), Lines(1000000, std::string(60, 'x')));
}

TEST_F(Exec, AppendsToWhatTheListHolds)
{
    const std::string before(2 * CZeExecPipeBase::floodKept, 'b');
    Lines lines = {before};
    CZeExecPipePosix runner(1);
    EXPECT_EQ(runner.Exec(commandLine("print 0 1 a\\n"), lines, "", 60, "", mark(), ""), 0);
    EXPECT_EQ(runner.Exec(commandLine("flood 2 1000"), lines, "", 60, "", mark(), ""),
              CZeExecPipeBase::boundExceeded);
    ASSERT_EQ(lines.size(), 2 + CZeExecPipeBase::floodKept / (1000 + sizeof(std::string)));
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 3),
              Lines({before, "a", std::string(1000, 'x')}));
}

TEST_F(Exec, DeliversStandardErrorBehindTheOutputOfAFailure)
{
    EXPECT_EQ(exec("print 5 2 why\\nnot 1 a\\nb\\n"), 5);
    EXPECT_EQ(output(), Lines({"a", "b", "why", "not"}));
}

TEST_F(Exec, KeepsStandardErrorOutOfATable)
{
    EXPECT_EQ(exec("print 0 2 noise\\n 1 a\\n"), 0);
    EXPECT_EQ(output(), Lines({"a"}));
}

TEST_F(Exec, DeliversBothStreamsAsOneWhenToldTo)
{
    Settings both;
    both.streams = 2;
    EXPECT_EQ(exec("print 0 1 a\\n 2 b\\n 1 c\\n", both), 0);
    EXPECT_EQ(output(), Lines({"a", "b", "c"}));
    EXPECT_EQ(exec("print 1 1 a\\n 2 b\\n 1 c\\n", both), 1);
    EXPECT_EQ(output(), Lines({"a", "b", "c"}));
}

TEST(Runner, DeliversOneStreamOrTwo)
{
    EXPECT_THROW(CZeExecPipePosix(0), std::invalid_argument);
    EXPECT_THROW(CZeExecPipePosix(3), std::invalid_argument);
    EXPECT_FALSE((std::is_convertible_v<int, CZeExecPipePosix>));
}

/// Whether every symbol of the library that holds `address` is looked up when it is loaded.
bool boundWhenLoaded(const void* address)
{
    Dl_info info;
    link_map* library = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP) == 0)
        return false;
    for (const ElfW(Dyn)* entry = library->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_FLAGS_1)
            return (entry->d_un.d_val & DF_1_NOW) != 0;
    }
    return false;
}

TEST(Runner, LooksNoFunctionUpInAChild)
{
    const CZeExecPipePosix runner(1);
    const void* table = *reinterpret_cast<void* const*>(&runner);
    EXPECT_TRUE(boundWhenLoaded(table));
}

TEST_F(Exec, PassesEveryCharacterOfAnArgumentOn)
{
    const std::string shell = "$(touch x) `id` ; | && > < * ? ~ ' \" \\ # ! %s\t{a,b}\n\x7f\xff";
    std::string expected;
    EXPECT_EQ(exec("arguments   " + shell + "  "), 0);
    for (const std::string& line : output())
        expected += line + '\n';
    EXPECT_EQ(expected, "[$(touch]\n[x)]\n[`id`]\n[;]\n[|]\n[&&]\n[>]\n[<]\n[*]\n[?]\n[~]\n[']\n"
                        "[\"]\n[\\]\n[#]\n[!]\n[%s\t{a,b}\n\x7f\xff]\n");
}

TEST_F(Exec, PassesALongArgumentOn)
{
    const std::string name(64 << 10, 'n');
    EXPECT_EQ(exec("arguments " + name), 0);
    EXPECT_EQ(output(), Lines({'[' + name + ']'}));
}

TEST_F(Exec, EndsAProgramAtItsLimit)
{
    Settings second;
    second.limit = 1;
    EXPECT_EQ(exec("hang", second), CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
    EXPECT_EQ(output(), Lines({"hanging"}));
    EXPECT_GE(took(), std::chrono::seconds(1));
}

TEST_F(Exec, GivesTwoSecondsBetweenSigtermAndSigkill)
{
    Settings second;
    second.limit = 1;
    EXPECT_EQ(exec("ignore_term", second), CZeExecPipeBase::deadlinePassed);
    expectNobodyLeft();
    EXPECT_GE(took(), std::chrono::seconds(3));
    EXPECT_LT(took(), std::chrono::seconds(30));
}

TEST_F(Exec, TakesALimitOfZeroAndTheLargest)
{
    Settings settings;
    for (const unsigned long limit : {0UL, ULONG_MAX}) {
        settings.limit = limit;
        EXPECT_EQ(exec("close_early", settings), 7);
    }
}

TEST_F(Exec, EndsALineOf64MebibytesAtTheBound)
{
    EXPECT_EQ(exec("lines 1 67108864"), CZeExecPipeBase::boundExceeded);
    EXPECT_EQ(output(), Lines());
}

TEST_F(Exec, TakesALineOfTheBound)
{
    EXPECT_EQ(exec("lines 1 " + std::to_string(CZeExecPipeBase::lineBound)), 0);
    EXPECT_EQ(output(), Lines({std::string(CZeExecPipeBase::lineBound, 'x')}));
}

TEST_F(Exec, KeepsTheBeginningOfAFlood)
{
    EXPECT_EQ(exec("flood 1 1000"), CZeExecPipeBase::boundExceeded);
    expectNobodyLeft();
    EXPECT_EQ(output().size(), CZeExecPipeBase::floodKept / (1000 + sizeof(std::string)));
    EXPECT_THAT(output(), Each(std::string(1000, 'x')));
}

// What the program inherits from the host.

TEST_F(Exec, PassesNoOtherDescriptorOn)
{
    const int mine = dup(0);
    ASSERT_EQ(exec("show descriptors"), 0);
    close(mine);
    EXPECT_THAT(output(), ElementsAre("0 /dev/null", StartsWith("1 pipe:"), StartsWith("2 pipe:")));
}

TEST_F(Exec, GivesTheProgramTheHostsVariablesInTheCLocale)
{
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("LANGUAGE", "de", 1);
    setenv("HOST_VARIABLE", "host's", 1);
    setenv("REPLACED", "host's", 1);
    Settings settings;
    settings.environment = "REPLACED=ours\nADDED=a b";
    ASSERT_EQ(exec("show environment", settings), 0);
    EXPECT_THAT(output(),
                AllOf(Contains("LC_ALL=C"), Contains("HOST_VARIABLE=host's"),
                      Contains("REPLACED=ours"), Contains("ADDED=a b"),
                      Not(Contains(StartsWith("LANGUAGE="))), Not(Contains("REPLACED=host's")),
                      Not(Contains("LC_ALL=de_DE.UTF-8"))));
    EXPECT_STREQ(getenv("LC_ALL"), "de_DE.UTF-8");
    EXPECT_STREQ(getenv("LANGUAGE"), "de");
    EXPECT_STREQ(getenv("REPLACED"), "host's");
    for (const char* name : {"LC_ALL", "LANGUAGE", "HOST_VARIABLE", "REPLACED"})
        unsetenv(name);
}

TEST_F(Exec, RunsInTheDirectoryThatItIsTold)
{
    EXPECT_EQ(exec("show directory"), 0);
    EXPECT_EQ(output(), Lines({std::filesystem::current_path()}));
    Settings settings;
    settings.directory = "/proc/1/";
    EXPECT_EQ(exec("show directory", settings), 0);
    EXPECT_EQ(output(), Lines({"/proc/1"}));
}

TEST_F(Exec, GivesTheProgramItsInput)
{
    EXPECT_EQ(exec("show input"), 0);
    EXPECT_EQ(output(), Lines());
    Settings settings;
    for (int line = 0; line < 100000; ++line)
        settings.input += "line\n";
    EXPECT_EQ(exec("show input", settings), 0);
    EXPECT_EQ(output(), Lines(100000, "line"));
}

TEST_F(Exec, NeedsNobodyToReadTheInput)
{
    Settings settings;
    settings.input = std::string(1 << 20, 'x');
    EXPECT_EQ(exec("exit_with 0", settings), 0);
}

TEST_F(Exec, LeavesAHostThatNobodyMayDumpAsItIs)
{
    ASSERT_EQ(prctl(PR_SET_DUMPABLE, 0), 0);
    Settings settings;
    settings.user = geteuid() == 0 ? "nobody" : "";
    EXPECT_EQ(exec("exit_with 0", settings), 0);
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), 0);
    prctl(PR_SET_DUMPABLE, 1);
}

TEST_F(Exec, RunsAsTheHostsUserOtherwise)
{
    ASSERT_EQ(exec("show identity"), 0);
    EXPECT_THAT(output().front(), StartsWith(std::to_string(getuid()) + ' '));
}

TEST_F(Exec, MakesTheProgramLeadItsSessionAndGroup)
{
    EXPECT_EQ(exec("show session"), 0);
    EXPECT_EQ(output(), Lines({"leads both"}));
}

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

    /// The end of the line `Command [...] took N ms and ...`.
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
    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    log->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(
        6, [](int, std::string_view) { throw std::logic_error("full"); }));
    traceTo(log);
    EXPECT_THROW(exec("exit_with 0"), std::logic_error);
    EXPECT_THROW(exec("/no/such/program"), std::logic_error);
}

} // namespace
