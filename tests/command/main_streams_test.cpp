// Standard output that cannot be written, and readers that go away.
#include <gmock/gmock.h>

#include <csignal>

#include "tests/command/dmpclaim.h"

using testing::EndsWith;
using testing::HasSubstr;

namespace {

const std::vector<std::vector<std::string>> everySubcommand{{"show", "/dev/sda"},
                                                            {"show", "/dev/sda", "-r"},
                                                            {"show", "/dev/sda", "-J"},
                                                            {"explain", "/dev/sda"},
                                                            {"strip", "/dev/sda1"},
                                                            {"append", "/dev/sda", "1"},
                                                            {"prefixes"},
                                                            {"list"},
                                                            {"active", "x"},
                                                            {"doctor"},
                                                            {"doctor", "-J"},
                                                            {"--help"},
                                                            {"--version"}};

TEST(Streams, AFullDiskIsAnError)
{
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    Setting setting;
    setting.output = full.number();
    for (const auto& arguments : everySubcommand) {
        const Result result = run(arguments, {}, setting);
        EXPECT_THAT(result.errors, EndsWith("dmpclaim: cannot write to standard output: No space "
                                            "left on device\n"));
        EXPECT_EQ(result.status, 1);
    }
}

TEST(Streams, AFullDiskEndsALongRun)
{
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    const Descriptor endless = openFile("/dev/zero", O_RDONLY);
    Setting setting;
    setting.input = endless.number();
    setting.output = full.number();
    for (const char* subcommand : {"show", "strip", "explain"})
        EXPECT_EQ(run({subcommand, "-"}, {}, setting).status, 1) << subcommand;
}

TEST(Streams, AClosedOutputIsAnError)
{
    Setting setting;
    setting.closedOutput = true;
    for (const auto& arguments : everySubcommand) {
        const Result result = run(arguments, {}, setting);
        EXPECT_THAT(result.errors, HasSubstr("dmpclaim: cannot write to standard output: "));
        EXPECT_EQ(result.status, 1);
    }
}

TEST(Streams, AClosedOutputDoesNotMatterWhenNothingIsWritten)
{
    Setting setting;
    setting.closedOutput = true;
    EXPECT_EQ(run({"strip", "-"}, {}, setting).status, 0);
    EXPECT_EQ(run({"frobnicate"}, {}, setting).status, 2);
}

/// Runs the command into a pipe without a reader and expects it to end quietly.
void expectQuietEnd(Setting setting)
{
    const Descriptor endless = openFile("/dev/zero", O_RDONLY);
    const Pipe pipe = [] {
        Pipe unread = makePipe();
        unread.reader.close();
        return unread;
    }();
    setting.input = endless.number();
    setting.output = pipe.writer.number();
    for (const char* subcommand : {"show", "strip", "explain"}) {
        const Result result = run({subcommand, "-"}, {}, setting);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(result.status, -SIGPIPE);
    }
}

TEST(Streams, AReaderThatGoesAwayEndsTheCommandQuietly)
{
    expectQuietEnd({});
}

TEST(Streams, AReaderThatGoesAwayEndsItAlsoWhenTheParentIgnoresTheSignal)
{
    Setting setting;
    setting.ignoredBrokenPipe = true;
    expectQuietEnd(setting);
}

TEST(Streams, AReaderThatGoesAwayEndsItAlsoWhenTheParentBlocksTheSignal)
{
    Setting setting;
    setting.blockedBrokenPipe = true;
    expectQuietEnd(setting);
}

} // namespace
