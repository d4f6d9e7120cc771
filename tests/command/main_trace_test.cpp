// The library's trace lines on standard error and in a file.
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/command/dmpclaim.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// Level and text of the lines, without time and process id.
std::vector<std::string> textsOf(const std::string& trace)
{
    std::vector<std::string> texts;
    for (const std::string& line : linesOf(trace)) {
        const std::size_t bracket = line.find("] ");
        texts.push_back(bracket == std::string::npos ? line : line.substr(bracket + 2));
    }
    return texts;
}

class TraceFile : public testing::Test {
protected:
    void SetUp() override
    {
        std::string folder = testing::TempDir() + "trace.XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        m_folder = folder;
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    std::string path() const { return m_folder / "trace.log"; }

    std::string content() const
    {
        std::ostringstream text;
        text << std::ifstream(path()).rdbuf();
        return text.str();
    }

private:
    std::filesystem::path m_folder;
};

TEST(Trace, IsSilentUnlessAskedFor)
{
    EXPECT_EQ(run({"show", "/dev/mapper/mpatha"}).errors, "");
}

TEST(Trace, GoesToStandardErrorAndChangesNoAnswer)
{
    const Result silent = run({"show", "/dev/mapper/mpatha"});
    const Result traced = run({"show", "/dev/mapper/mpatha", "--trace"});
    EXPECT_EQ(traced.output, silent.output);
    EXPECT_EQ(traced.status, silent.status);
    const auto texts = textsOf(traced.errors);
    EXPECT_THAT(texts, Contains(MatchesRegex("6 Entering Function getClaimModule .*")));
    EXPECT_THAT(texts, Contains(MatchesRegex("6 Exiting Function removePartitionSuffix .*")));
    EXPECT_THAT(texts, Contains("3 INFO: CDmpDeviceMapperClaim::claim - returning "
                                "CLAIM_SECONDARY"));
}

TEST(Trace, LevelsAreFiltered)
{
    const std::vector<std::string> command{"show", "/dev/emcpowera7"};
    const auto errors = [&](const char* level) {
        std::vector<std::string> arguments = command;
        arguments.emplace_back(level);
        return textsOf(run(arguments).errors);
    };
    const auto informational =
        ElementsAre("3 INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY",
                    "3 INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY",
                    "3 INFO: CDmpPowerPathClaim::removePartitionSuffix device [/dev/emcpowera] "
                    "partition[/dev/emcpowera7] partnum[7]",
                    "3 INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY");
    EXPECT_THAT(errors("--trace=1"), IsEmpty());
    EXPECT_THAT(errors("--trace=2"), IsEmpty());
    EXPECT_THAT(errors("--trace=3"), informational);
    EXPECT_THAT(errors("--trace=5"), informational);
    EXPECT_EQ(errors("--trace=6").size(), errors("--trace").size());
    EXPECT_GT(errors("--trace").size(), 3U);
}

TEST(Trace, ExplainTracesItsOwnModules)
{
    const auto texts = textsOf(run({"explain", "/dev/sda", "--trace"}).errors);
    EXPECT_THAT(texts.front(), MatchesRegex("6 Entering Function claim .*nativepath_claim.*"));
}

TEST(Trace, EveryLineHasTimeProcessAndLevel)
{
    for (const std::string& line : linesOf(run({"show", "/dev/sda", "--trace"}).errors))
        EXPECT_THAT(line, MatchesRegex("[0-9-]+T[0-9:.]+[+-][0-9:]+ \\[[0-9]+\\] [36] .*"));
}

TEST(Trace, NamesForgeNoLines)
{
    const Result result = run({"strip", "/dev/emcpowera\nforged1", "--trace=3"});
    EXPECT_THAT(result.errors, HasSubstr("partition[/dev/emcpowera\\x0aforged1]"));
}

TEST_F(TraceFile, HoldsAllLinesInsteadOfStandardError)
{
    const Result result = run({"show", "/dev/sda", "--trace-file", path()});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(textsOf(content()).size(),
              textsOf(run({"show", "/dev/sda", "--trace"}).errors).size());
}

TEST_F(TraceFile, HoldsTheLevelThatTraceSays)
{
    EXPECT_EQ(run({"show", "/dev/sda", "--trace=3", "--trace-file", path()}).errors, "");
    EXPECT_EQ(content(), "");
    run({"append", "/dev/emcpowera", "1", "--trace-file=" + path(), "--trace=3"});
    EXPECT_EQ(textsOf(content()).size(), 3U);
}

TEST_F(TraceFile, IsAppendedTo)
{
    run({"show", "/dev/emcpowera", "--trace=3", "--trace-file", path()});
    const std::string once = content();
    run({"show", "/dev/emcpowera", "--trace=3", "--trace-file", path()});
    EXPECT_EQ(content().substr(0, once.size()), once);
    EXPECT_EQ(content().size(), 2 * once.size());
}

TEST_F(TraceFile, StaysApartFromAClosedStandardOutput)
{
    Setting setting;
    setting.closedOutput = true;
    EXPECT_EQ(run({"show", "/dev/sda", "--trace-file", path()}, {}, setting).status, 1);
    EXPECT_THAT(content(), testing::Not(HasSubstr("NAME")));
}

TEST_F(TraceFile, OneThatCannotBeWrittenIsAnErrorBeforeAnythingIsPrinted)
{
    const Result result = run({"prefixes", "--trace-file", path() + "/x"});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors.substr(0, result.errors.find('\n')),
              "dmpclaim: cannot write trace file '" + path() + "/x': No such file or directory");
    EXPECT_EQ(result.status, 2);
}

TEST_F(TraceFile, OneThatAnotherAccountMayHaveLinkedIsRefused)
{
    const std::filesystem::path shared = path() + ".d";
    std::filesystem::create_directory(shared);
    std::filesystem::permissions(shared, std::filesystem::perms::all);
    std::ofstream(path()) << "untouched";
    std::filesystem::create_hard_link(path(), shared / "linked");
    const Result result = run({"prefixes", "--trace-file", shared / "linked"});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors.substr(0, result.errors.find('\n')),
              "dmpclaim: cannot write trace file '" + (shared / "linked").string() +
                  "': file with several names in a folder that others may write");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(content(), "untouched");
}

TEST(Trace, AFullDiskChangesNoAnswerAndIsReported)
{
    const std::size_t lines = textsOf(run({"prefixes", "--trace"}).errors).size();
    const Result result = run({"prefixes", "--trace-file", "/dev/full"});
    EXPECT_EQ(result.output, run({"prefixes"}).output);
    EXPECT_EQ(result.errors, "dmpclaim: the trace file could not be written; lines lost: " +
                                 std::to_string(lines) + "\n");
    EXPECT_EQ(result.status, 0);
}

TEST(Trace, TheLinesThatSeveralJobsLoseAreReportedOnce)
{
    const Result result =
        run({"active", "-j4", "/dev/emcpowera", "/dev/emcpowerb", "--trace-file", "/dev/full"});
    EXPECT_THAT(result.errors, MatchesRegex("dmpclaim: [^\n]*; lines lost: [0-9]+\n"));
}

} // namespace
