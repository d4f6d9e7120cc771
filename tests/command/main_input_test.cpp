// Paths from standard input.
#include <gmock/gmock.h>

#include "tests/command/dmpclaim.h"
#include "tests/support/sanitized.h"

namespace {

using namespace std::string_literals;

std::string disksOf(const std::vector<std::string>& arguments, const std::string& input)
{
    std::vector<std::string> all{"strip"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return run(all, input).output;
}

TEST(Input, ADashReadsLines)
{
    EXPECT_EQ(disksOf({"-"}, "/dev/sda1\n/dev/sdb2\n"), "/dev/sda\n/dev/sdb\n");
    EXPECT_EQ(disksOf({"/dev/sdx1", "-", "/dev/sdy1"}, "/dev/sda1\n"),
              "/dev/sdx\n/dev/sda\n/dev/sdy\n");
}

TEST(Input, DisksOfPartitionsMayComeFromIt)
{
    EXPECT_EQ(run({"append", "-", "2"}, "/dev/sda\n/dev/mapper/x\n").output,
              "/dev/sda2\n/dev/mapper/xp2\n");
    EXPECT_EQ(run({"append", "-0", "-", "2"}, "/dev/sd\na\0/dev/sdb"s).output,
              "/dev/sd\na2\n/dev/sdb2\n");
}

TEST(Input, ALastLineWithoutItsEndCounts)
{
    EXPECT_EQ(disksOf({"-"}, "/dev/sda1\n/dev/sdb2"), "/dev/sda\n/dev/sdb\n");
}

TEST(Input, PathsMayBeNulSeparated)
{
    EXPECT_EQ(disksOf({"-"}, "/dev/sda1\0/dev/sd\nb2\0"s), "/dev/sda\n/dev/sd\nb\n");
    EXPECT_EQ(disksOf({"-0", "-"}, "/dev/sd\na1\0/dev/sdb2"s), "/dev/sd\na\n/dev/sdb\n");
}

TEST(Input, LineEndsOfOtherSystemsAreUnderstood)
{
    const Result result = run({"show", "-n", "-r", "-o", "DISK", "-"}, "/dev/sda1\r\n/dev/sdb\r\n");
    EXPECT_EQ(result.output, "/dev/sda\n/dev/sdb\n");
    EXPECT_EQ(result.errors, "dmpclaim: lines of standard input end with a carriage return, which "
                             "is taken off; to keep it, separate the names by NULs\n");
}

TEST(Input, EmptyLinesAreSkipped)
{
    const Result result = run({"strip", "-"}, "\n/dev/sda1\n\n");
    EXPECT_EQ(result.output, "/dev/sda\n");
    EXPECT_EQ(result.status, 0);
}

TEST(Input, NoneIsNoError)
{
    const Result result = run({"strip", "-"});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Input, AnswersGoOutAsPathsComeIn)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"strip", "-"}, {"show", "-", "-n", "-r", "-o", "disk"}}) {
        Process process(dmpclaim(arguments));
        for (int i = 0; i < 3; ++i) {
            process.send("/dev/sda1\n");
            EXPECT_EQ(process.receiveLine(), "/dev/sda\n");
        }
        EXPECT_EQ(process.finish().status, 0);
    }
}

/// The peak of memory, in KiB, when the command answers `count` paths into nothing. The child
/// begins with the test's own memory, so this test holds few paths at a time.
long peakFor(const std::vector<std::string>& arguments, int count)
{
    const Descriptor input = fileHolding("");
    for (int i = 0; i < count; ++i) {
        const std::string path = "/dev/mapper/mpath" + std::to_string(i) + "p1\n";
        EXPECT_EQ(write(input.number(), path.data(), path.size()),
                  static_cast<ssize_t>(path.size()));
    }
    lseek(input.number(), 0, SEEK_SET);
    const Descriptor output = openFile("/dev/null", O_WRONLY);
    Setting setting;
    setting.input = input.number();
    setting.output = output.number();
    // Without these options the address sanitizer, if there is one, keeps freed memory.
    setting.environment = {"ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0"};
    const Result result = run(arguments, {}, setting);
    EXPECT_EQ(result.status, 0);
    return result.peakKilobytes;
}

/// The peak varies by some 200 KiB. The smallest block that a path could leave allocated takes 32
/// bytes: 20,000 of them would show. Explanations are larger, and take longer to make.
TEST(Input, MemoryDoesNotGrowWithTheNumberOfPaths)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"show", "-"},
                                                      {"show", "-", "-r"},
                                                      {"strip", "-"},
                                                      {"show", "-", "-P"},
                                                      {"show", "-", "-J"},
                                                      {"show", "-", "--json-lines"}}) {
        const long peak = peakFor(arguments, 1000);
        EXPECT_LT(peakFor(arguments, 20000), peak + 512) << arguments.front();
        EXPECT_TRUE(isSanitized || peak < 16 << 10) << peak << " KiB";
    }
    const long peak = peakFor({"explain", "-"}, 1000);
    EXPECT_LT(peakFor({"explain", "-"}, 5000), peak + 512);
    const long jsonPeak = peakFor({"explain", "-J", "-"}, 1000);
    EXPECT_LT(peakFor({"explain", "-J", "-"}, 5000), jsonPeak + 512);
}

/// Input and output are larger than any pipe or buffer on the way.
TEST(Input, TwentyThousandPathsAreAllAnswered)
{
    std::string paths;
    std::string disks;
    for (int i = 0; i < 20000; ++i) {
        const std::string disk = "/dev/mapper/mpath" + std::to_string(i);
        paths += disk + "p1\n";
        disks += disk + "\n";
    }
    EXPECT_TRUE(disksOf({"-"}, paths) == disks);
    EXPECT_EQ(runJson({"show", "-"}, paths)["devices"].size(), 20000U);
}

TEST(Input, OneThatCannotBeReadIsAnError)
{
    const Descriptor folder = openFile("/", O_RDONLY | O_DIRECTORY);
    Setting setting;
    setting.input = folder.number();
    const Result result = run({"strip", "-"}, {}, setting);
    EXPECT_EQ(result.errors, "dmpclaim: cannot read standard input: Is a directory\n");
    EXPECT_EQ(result.status, 1);
}

} // namespace
