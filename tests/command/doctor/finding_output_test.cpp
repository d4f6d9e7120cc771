#include "doctor/finding_output.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"

namespace {

using command::Code;
using command::Finding;
using command::findingText;
using command::Severity;
using Row = nlohmann::ordered_json;
using command::summary;

Row findingRow(const Finding& finding)
{
    return parsed(command::findingDocument(finding));
}

TEST(FindingText, CodeAndTextFollowTheSeverity)
{
    EXPECT_EQ(findingText({Code::toolReady, "kodisk", "can be run"}),
              "ok       tool-ready kodisk: can be run\n");
}

TEST(FindingText, AdviceAndRemedyFollow)
{
    EXPECT_EQ(findingText({Code::pathLost, "/dev/sdc", "odd", "look", "ls"}),
              "warning  path-lost /dev/sdc: odd\n"
              "         To do: look\n"
              "         Type: ls\n");
}

TEST(FindingText, LongTextsAreWrappedButForCommands)
{
    const std::string words = std::string(40, 'x') + ' ' + std::string(40, 'y');
    EXPECT_EQ(findingText({Code::noPath, "a", words, words, words}),
              "error    no-path a: " + std::string(40, 'x') + "\n         " + std::string(40, 'y') +
                  "\n         To do: " + std::string(40, 'x') + "\n         " +
                  std::string(40, 'y') + "\n         Type: " + words + '\n');
}

TEST(FindingText, ForgesNoLines)
{
    EXPECT_EQ(findingText({Code::notAsked, "a\n", "b\x1b", "c\r", "d\n"}),
              "note     not-asked a\\x0a: b\\x1b\n"
              "         To do: c\\x0d\n"
              "         Type: d\\x0a\n");
}

TEST(FindingDocument, HoldsTheTextsAsTheyAre)
{
    EXPECT_EQ(findingRow({Code::noPath, "a\n", "b", "c", "d"}), Row({{"code", "no-path"},
                                                                     {"severity", "error"},
                                                                     {"device", "a\n"},
                                                                     {"text", "b"},
                                                                     {"advice", "c"},
                                                                     {"remedy", "d"}}));
    const Row row = findingRow({Code::toolReady, "a", "b"});
    EXPECT_EQ(row["advice"], nullptr);
    EXPECT_EQ(row["remedy"], nullptr);
}

TEST(Summary, CountsWhatIsWrong)
{
    EXPECT_EQ(summary({}), "Nothing is wrong.\n");
    EXPECT_EQ(summary({{Severity::ok, 3}, {Severity::note, 2}}), "Nothing is wrong.\n");
    EXPECT_EQ(summary({{Severity::warning, 1}}), "1 warning\n");
    EXPECT_EQ(summary({{Severity::warning, 2}}), "2 warnings\n");
    EXPECT_EQ(summary({{Severity::error, 1}}), "1 error, 0 warnings\n");
    EXPECT_EQ(summary({{Severity::error, 2}, {Severity::warning, 1}}), "2 errors, 1 warning\n");
}

} // namespace
