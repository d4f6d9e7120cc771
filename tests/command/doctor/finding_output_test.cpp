#include "doctor/finding_output.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"
#include "tests/command/output/captured_output.h"

namespace {

using command::Code;
using command::Finding;
using command::Severity;
using Row = nlohmann::ordered_json;
using command::summary;

std::string shown(const Finding& finding, bool isColored = false)
{
    CapturedOutput output;
    output.stream().setColored(isColored);
    return command::findingText(finding, output.stream());
}

Row findingRow(const Finding& finding)
{
    return parsed(command::findingDocument(finding));
}

TEST(FindingText, CodeAndTextFollowTheSeverity)
{
    EXPECT_EQ(shown({Code::toolReady, "kodisk", "can be run"}),
              "ok       tool-ready kodisk: can be run\n");
}

TEST(FindingText, AdviceAndRemedyFollow)
{
    EXPECT_EQ(shown({Code::pathLost, "/dev/sdc", "odd", "look", "ls"}),
              "warning  path-lost /dev/sdc: odd\n"
              "         To do: look\n"
              "         Type: ls\n");
}

TEST(FindingText, LongTextsAreWrappedButForCommands)
{
    const std::string words = std::string(40, 'x') + ' ' + std::string(40, 'y');
    EXPECT_EQ(shown({Code::noPath, "a", words, words, words}),
              "error    no-path a: " + std::string(40, 'x') + "\n         " + std::string(40, 'y') +
                  "\n         To do: " + std::string(40, 'x') + "\n         " +
                  std::string(40, 'y') + "\n         Type: " + words + '\n');
}

TEST(FindingText, TheSeverityHasAColour)
{
    const auto severity = [](Code code) {
        const std::string text = shown({code, "a", "b"}, true);
        return text.substr(0, text.find(' '));
    };
    EXPECT_EQ(severity(Code::toolReady), "\x1b[32mok\x1b[0m");
    EXPECT_EQ(severity(Code::notAsked), "\x1b[36mnote\x1b[0m");
    EXPECT_EQ(severity(Code::pathLost), "\x1b[33mwarning\x1b[0m");
    EXPECT_EQ(severity(Code::noPath), "\x1b[1;31merror\x1b[0m");
}

TEST(FindingText, ForgesNoLines)
{
    EXPECT_EQ(shown({Code::notAsked, "a\n", "b\x1b", "c\r", "d\n"}),
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
