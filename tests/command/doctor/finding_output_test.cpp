#include "doctor/finding_output.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"

namespace {

using command::Finding;
using command::findingText;
using Row = nlohmann::ordered_json;
using command::summary;

Row findingRow(const Finding& finding)
{
    return parsed(command::findingDocument(finding));
}

TEST(FindingText, TheTextFollowsTheState)
{
    EXPECT_EQ(findingText({Finding::State::ok, "kodisk", "can be run", ""}),
              "ok       kodisk: can be run\n");
}

TEST(FindingText, TheRemedyFollows)
{
    EXPECT_EQ(findingText({Finding::State::warning, "/dev/sdc", "odd", "look"}),
              "warning  /dev/sdc: odd\n"
              "         To do: look\n");
}

TEST(FindingText, LongTextsAreWrappedButForCommandsThatAreAdvised)
{
    const std::string words = std::string(40, 'x') + ' ' + std::string(40, 'y');
    EXPECT_EQ(findingText({Finding::State::error, "a", words, words}),
              "error    a: " + std::string(40, 'x') + "\n         " + std::string(40, 'y') +
                  "\n         To do: " + words + '\n');
}

TEST(FindingText, ACommandIsOnALineOfItsOwnAndNotWrapped)
{
    const std::string command = "tool   " + std::string(80, 'x') + "  y";
    EXPECT_EQ(findingText({Finding::State::error, "a", "b from:", "look", command}),
              "error    a: b from:\n         " + command + "\n         To do: look\n");
}

TEST(FindingText, ACommandMayBePastedIntoAShell)
{
    const Finding finding{Finding::State::error, "a", "b from:", "", "tool   x=$(y)\n  z"};
    EXPECT_EQ(findingText(finding),
              "error    a: b from:\n         tool   $'x=\\044\\050y\\051\\012'  z\n");
    EXPECT_EQ(findingRow(finding)["text"], "b from: tool   $'x=\\044\\050y\\051\\012'  z");
}

TEST(FindingText, ForgesNoLines)
{
    EXPECT_EQ(findingText({Finding::State::note, "a\n", "b\x1b", "c\r", "d\n"}),
              "note     a\\x0a: b\\x1b\n"
              "         $'d\\012'\n"
              "         To do: c\\x0d\n");
}

TEST(FindingDocument, HoldsTheTextsAsTheyAre)
{
    EXPECT_EQ(findingRow({Finding::State::error, "a\n", "b", "c"}),
              Row({{"state", "error"}, {"subject", "a\n"}, {"text", "b"}, {"advice", "c"}}));
    EXPECT_EQ(findingRow({Finding::State::ok, "a", "b", ""})["advice"], nullptr);
    EXPECT_EQ(findingRow({Finding::State::error, "a", "b from:", "c", "d   e"})["text"],
              "b from: d   e");
}

TEST(Summary, CountsWhatIsWrong)
{
    using State = Finding::State;
    EXPECT_EQ(summary({}), "Nothing is wrong.\n");
    EXPECT_EQ(summary({{State::ok, 3}, {State::note, 2}}), "Nothing is wrong.\n");
    EXPECT_EQ(summary({{State::warning, 1}}), "1 warning\n");
    EXPECT_EQ(summary({{State::warning, 2}}), "2 warnings\n");
    EXPECT_EQ(summary({{State::error, 1}}), "1 error, 0 warnings\n");
    EXPECT_EQ(summary({{State::error, 2}, {State::warning, 1}}), "2 errors, 1 warning\n");
}

} // namespace
