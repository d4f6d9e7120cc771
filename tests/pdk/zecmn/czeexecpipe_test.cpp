// What a run results in, delivers and bounds, and what the program inherits from the host.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <stdexcept>
#include <type_traits>

#include <dlfcn.h>
#include <link.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "exec_test.h"

using koze_pdk_4_4::CZeExecPipeBase;
using koze_pdk_4_4::CZeExecPipePosix;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
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

} // namespace
