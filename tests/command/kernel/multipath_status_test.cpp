#include "kernel/multipath_status.h"

#include <string>

#include <gmock/gmock.h>

using namespace command;
using GroupState = MultipathStatus::GroupState;

namespace {

/// As short as a test can read it:  next | group-state path...
std::string shown(const std::optional<MultipathStatus>& status)
{
    if (!status)
        return "nothing";
    std::string text = std::to_string(status->nextGroup);
    for (const MultipathStatus::Group& group : status->groups) {
        constexpr char states[] = {'A', 'E', 'D'};
        (text += " | ") += states[static_cast<int>(group.state)];
        for (const MultipathStatus::Path& path : group.paths)
            text += ' ' + path.number.text() + (path.isActive ? "+" : "-") +
                    std::to_string(path.failures);
    }
    return text;
}

struct Line {
    const char* text;
    const char* meaning;
};

TEST(MultipathStatusText, HasEachGroupWithItsPaths)
{
    constexpr Line lines[] = {
        // Two paths, two groups; a round-robin selector.
        {"2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0", "1 | A 8:0+0 | E 8:16+0"},
        // After a failover, and before any request.
        {"2 0 1 0 2 2 E 0 1 0 8:0 F 3 A 0 1 0 8:16 A 0", "2 | E 8:0-3 | A 8:16+0"},
        {"2 0 0 0 2 1 E 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0", "1 | E 8:0+0 | E 8:16+0"},
        // Several paths in a group; a selector with two words for each path.
        {"2 0 1 0 1 1 A 0 3 2 8:0 A 0 0 1 8:16 A 1 0 1 65:32 F 7 2 1 ",
         "1 | A 8:0+0 8:16+1 65:32-7"},
        // A hardware handler and a selector that tell words of their own.
        {"2 1 1 1 alua 1 1 D 2 x y 1 0 8:0 A 0", "1 | D 8:0+0"},
        // Older kernels tell other features.
        {"1 queue_if_no_path 0 1 1 E 0 1 0 259:4294967295 A 18446744073709551615",
         "1 | E 259:4294967295+18446744073709551615"},
        {"2 0 0 0 1 0 E 0 0 0", "0 | E"},
        {"2 0 0 0 0 0", "0"},
    };
    for (const Line& line : lines)
        EXPECT_EQ(shown(parseMultipathStatus(line.text)), line.meaning) << line.text;
}

TEST(MultipathStatusText, OfOtherTargetsAndNearMissesIsNothing)
{
    for (const char* text :
         {"", " ", "x", "0 32768 linear 8:0 2048", "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0 1",
          "2 0 1 0 1 1 X 0 1 0 8:0 A 0", "2 0 1 0 1 1 AE 0 1 0 8:0 A 0",
          "2 0 1 0 1 1 A 0 1 0 sda A 0", "2 0 1 0 1 1 A 0 1 0 8:0 B 0",
          "2 0 1 0 1 1 A 0 1 0 8:0 A -1", "2 0 1 0 1 1 A 0 1 0 8:0 A x",
          "2 0 1 0 1 -1 A 0 1 0 8:0 A 0", "-1 0 1 1 A 0 1 0 8:0 A 0"})
        EXPECT_EQ(shown(parseMultipathStatus(text)), "nothing") << text;
}

TEST(MultipathStatusText, ThatIsCutAnywhereIsNothing)
{
    const std::string whole = "2 0 1 1 alua 2 1 A 1 x 1 1 8:0 A 0 9 E 0 1 0 8:16 A 0";
    ASSERT_EQ(shown(parseMultipathStatus(whole)), "1 | A 8:0+0 | E 8:16+0");
    for (std::size_t end = whole.rfind(' '); end != std::string::npos;
         end = end == 0 ? std::string::npos : whole.rfind(' ', end - 1))
        EXPECT_EQ(shown(parseMultipathStatus(whole.substr(0, end))), "nothing") << end;
}

TEST(MultipathStatusText, ThatPromisesEndlesslyManyWordsIsNothing)
{
    const std::string many = std::to_string(UINT64_MAX);
    for (const std::string& text :
         {many, many + " 0 0 0", "0 0 " + many + " 1", "0 0 1 1 A 0 " + many + " 0",
          "0 0 1 1 A 0 1 " + many + " 8:0 A 0 1"})
        EXPECT_EQ(shown(parseMultipathStatus(text)), "nothing") << text;
}

} // namespace
