// Signals that cut a JSON document short.
#include <gmock/gmock.h>

#include <csignal>

#include "tests/command/dmpclaim.h"

using Json = nlohmann::ordered_json;

namespace {

class InterruptBy : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(InterruptBy, ClosesTheDocument)
{
    for (const char* subcommand : {"show", "explain", "strip"}) {
        Process process(dmpclaim({subcommand, "-J", "-"}));
        process.send("/dev/sda\n");
        EXPECT_EQ(process.receiveLine(), "{\n");
        process.signal(GetParam().first);
        ASSERT_TRUE(process.endsWithin(10'000)); // while the input is open
        const Result result = process.finish();
        const Json document = Json::parse("{" + result.output);
        EXPECT_TRUE(document["interrupted"]);
        EXPECT_EQ(document.items().begin().key(), "schema");
        EXPECT_THAT(result.output, testing::HasSubstr("/dev/sda"));
        EXPECT_EQ(result.status, GetParam().second);
    }
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptBy,
                         testing::Values(std::pair(SIGINT, 130), std::pair(SIGTERM, 143),
                                         std::pair(SIGHUP, 129), std::pair(SIGQUIT, 131)));

TEST(Interrupt, ALongDocumentIsWholeWhereverItIsCut)
{
    const Descriptor endless = openFile("/dev/zero", O_RDONLY);
    Setting setting;
    setting.input = endless.number();
    for (int i = 0; i < 10; ++i) {
        Process process(dmpclaim({"show", "-J", "-0", "-o", "NAME", "-"}), setting);
        for (int line = 0; line < 1000 * (i + 1); ++line)
            process.receiveLine();
        process.signal(SIGTERM);
        const Result result = process.finish();
        EXPECT_EQ(result.status, 143);
        EXPECT_THAT(result.output, testing::EndsWith("    }\n  ],\n  \"interrupted\": true\n}\n"));
    }
}

TEST(Interrupt, LinesOfJsonAreWhole)
{
    const Descriptor endless = openFile("/dev/zero", O_RDONLY);
    Setting setting;
    setting.input = endless.number();
    Process process(dmpclaim({"show", "--json-lines", "-0", "-o", "NAME", "-"}), setting);
    EXPECT_EQ(process.receiveLine(), "{\"name\":\"\"}\n");
    process.signal(SIGTERM);
    EXPECT_THAT(process.finish().output, testing::EndsWith("\n{\"name\":\"\"}\n"));
}

TEST(Interrupt, ADocumentThatNobodyReadsDoesNotDelayTheEnd)
{
    const Descriptor endless = openFile("/dev/zero", O_RDONLY);
    Setting setting;
    setting.input = endless.number();
    Process process(dmpclaim({"show", "-J", "-0", "-"}), setting);
    process.receiveLine();
    process.signal(SIGTERM);
    EXPECT_TRUE(process.endsWithin(5000));
}

TEST(Interrupt, AnInputThatCannotBeReadClosesTheDocumentToo)
{
    const Descriptor folder = openFile("/", O_RDONLY);
    Setting setting;
    setting.input = folder.number();
    const Result result = run({"show", "-J", "/dev/sda", "-"}, {}, setting);
    EXPECT_TRUE(Json::parse(result.output)["interrupted"]);
    EXPECT_EQ(result.errors, "dmpclaim: cannot read standard input: Is a directory\n");
    EXPECT_EQ(result.status, 1);
}

} // namespace
