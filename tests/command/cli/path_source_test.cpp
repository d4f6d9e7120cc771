#include "cli/path_source.h"

#include <gmock/gmock.h>

#include "tests/support/process.h"

using command::LineReader;
using command::PathSource;
using testing::ElementsAre;

namespace {

std::vector<std::string> pathsOf(const std::vector<std::string>& arguments, std::string_view input)
{
    const Descriptor file = fileHolding(input);
    PathSource source(arguments, LineReader(file.number(), [] {}));
    std::vector<std::string> paths;
    while (const std::optional<std::string> path = source.next())
        paths.push_back(*path);
    return paths;
}

TEST(PathSource, ArgumentsComeInTheirOrder)
{
    EXPECT_THAT(pathsOf({"b", "", "a"}, "unread\n"), ElementsAre("b", "", "a"));
}

TEST(PathSource, ADashStandsForTheLinesOfStandardInput)
{
    EXPECT_THAT(pathsOf({"a", "-", "d"}, "b\nc\n"), ElementsAre("a", "b", "c", "d"));
}

TEST(PathSource, ASecondDashFindsNothingMore)
{
    EXPECT_THAT(pathsOf({"-", "-"}, "a\n"), ElementsAre("a"));
}

TEST(PathSource, ADashInTheInputIsAPath)
{
    EXPECT_THAT(pathsOf({"-"}, "-\na\n"), ElementsAre("-", "a"));
}

} // namespace
