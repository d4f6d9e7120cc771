#include "names/explanation.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"

using Row = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Row explain(const std::string& path)
{
    CDmpClaimManager manager;
    return parsed(
        command::explanationRecord(command::explanation(manager, command::makeModules({}), path)));
}

std::vector<std::string> warningCodes(const Row& explanation)
{
    std::vector<std::string> codes;
    for (const Row& warning : explanation["warnings"])
        codes.push_back(warning["code"]);
    return codes;
}

TEST(Explanation, HoldsWhatEveryModuleSaysInOrder)
{
    const auto modules = explain("/dev/mapper/dev/sda1")["modules"];
    EXPECT_EQ(modules.size(), command::drivers().size());
    EXPECT_THAT(modules.dump(),
                testing::StartsWith(
                    R"([{"module":"native","claim":2,"prefixes":["/dev/sd"]},)"
                    R"({"module":"powerpath","claim":0,"prefixes":["/dev/emcpower"]},)"
                    R"({"module":"device-mapper","claim":16,"prefixes":["/dev/mapper/"]})"));
}

TEST(Explanation, TellsByWhichRuleTheOwnerWon)
{
    EXPECT_EQ(explain("/dev/sda1")["rule"], "only claim");
    EXPECT_EQ(explain("/dev/mapper/dev/sda1")["rule"], "strongest claim");
    EXPECT_EQ(explain("/dev/mapper/dev/emcpowera")["rule"], "first of equals");
    EXPECT_EQ(explain("/dev/mapper/dev/emcpowera/dev/sda")["rule"], "first of equals");
    EXPECT_EQ(explain("/dev/vda")["rule"], "nobody");
}

TEST(Explanation, HoldsTheRowOfTheDevice)
{
    const Row row = explain("/dev/sdb12");
    EXPECT_EQ(row["name"], "/dev/sdb12");
    EXPECT_EQ(row["owner"], "native");
    EXPECT_EQ(row["claim"], 2);
    EXPECT_EQ(row["partition"], true);
    EXPECT_EQ(row["disk"], "/dev/sdb");
    EXPECT_EQ(row["partnum"], 12);
    EXPECT_THAT(row["warnings"], IsEmpty());
}

TEST(Explanation, WarnsOfEqualClaims)
{
    const Row row = explain("/dev/mapper/dev/emcpowera");
    EXPECT_EQ(row["owner"], "powerpath");
    EXPECT_THAT(warningCodes(row), ElementsAre("equal-claims", "prefix-not-at-start"));
    EXPECT_THAT(row["warnings"][0]["text"].get<std::string>(),
                testing::StartsWith("powerpath and device-mapper claim this path equally "
                                    "strongly. powerpath gets it"));
}

TEST(Explanation, WarnsOfNames)
{
    EXPECT_THAT(warningCodes(explain("/dev/mapper/mpathbp2")), ElementsAre("p-and-digit"));
    EXPECT_THAT(warningCodes(explain("/dev/mapper/a-part1")), ElementsAre("udev-partition-name"));
    EXPECT_THAT(warningCodes(explain("/dev/vda")), IsEmpty());
}

} // namespace
