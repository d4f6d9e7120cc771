#include "doctor/finding_codes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "cli/usage_error.h"
#include "doctor/finding_filter.h"

namespace {

using command::Code;
using command::codeNamed;
using command::codeTable;
using command::FindingFilter;
using testing::HasSubstr;

TEST(FindingCodes, EachHasANameOfItsOwnInLowerCase)
{
    std::set<std::string> names;
    for (const command::CodeFacts& facts : codeTable) {
        EXPECT_THAT(facts.name, testing::MatchesRegex("[a-z]+(-[a-z]+)*"));
        EXPECT_TRUE(names.insert(facts.name).second) << facts.name;
        EXPECT_EQ(codeNamed(facts.name), facts.code);
    }
    EXPECT_EQ(codeNamed("no-such-code"), std::nullopt);
    EXPECT_EQ(codeNamed(""), std::nullopt);
}

TEST(FindingCodes, AreListedALineEach)
{
    const std::string list = command::codeList();
    EXPECT_THAT(list,
                HasSubstr("\none-path-left         warning a disk of several paths has one "));
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), std::ptrdiff_t{command::codeCount});
    for (const command::CodeFacts& facts : codeTable)
        EXPECT_THAT(list, HasSubstr(facts.meaning));
}

TEST(FindingCodes, FitIntoHelp)
{
    const std::string help = command::codeHelp();
    EXPECT_THAT(help, HasSubstr("\n  one-path-left         warning a disk of several paths has "));
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 79U) << line;
}

TEST(FindingFilter, LetsEverythingPassAtFirst)
{
    for (const command::CodeFacts& facts : codeTable)
        EXPECT_TRUE(FindingFilter().passes(facts.code));
}

TEST(FindingFilter, PassesOnlyTheCodesThatAreNamed)
{
    FindingFilter filter;
    filter.setOnly("no-path,path-lost");
    EXPECT_TRUE(filter.passes(Code::noPath));
    EXPECT_TRUE(filter.passes(Code::pathLost));
    EXPECT_FALSE(filter.passes(Code::toolFailed));
}

TEST(FindingFilter, IgnoresCodes)
{
    FindingFilter filter;
    filter.setOnly("no-path,path-lost");
    filter.ignore("path-lost");
    EXPECT_TRUE(filter.passes(Code::noPath));
    EXPECT_FALSE(filter.passes(Code::pathLost));
}

TEST(FindingFilter, QuietlyPassesWarningsAndErrors)
{
    FindingFilter filter;
    filter.setQuiet();
    EXPECT_TRUE(filter.passes(Code::noPath));
    EXPECT_TRUE(filter.passes(Code::pathLost));
    EXPECT_FALSE(filter.passes(Code::diskNotHeld));
    EXPECT_FALSE(filter.passes(Code::toolReady));
}

TEST(FindingFilter, RefusesWhatIsNoCode)
{
    for (const char* list : {"", "no-path,", ",no-path", "no-path path-lost", "NO-PATH"}) {
        FindingFilter filter;
        EXPECT_THROW(filter.setOnly(list), command::UsageError) << list;
        EXPECT_THROW(filter.ignore(list), command::UsageError) << list;
    }
}

} // namespace
