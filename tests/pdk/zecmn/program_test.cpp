#include "pdk/zecmn/program.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <stdexcept>

using koze_pdk_4_4::runner::checkedDirectory;
using koze_pdk_4_4::runner::childEnvironment;
using koze_pdk_4_4::runner::Identity;
using koze_pdk_4_4::runner::lookUpUser;
using koze_pdk_4_4::runner::splitCommand;

namespace {

using Texts = std::vector<std::string>;

TEST(SplitCommand, CutsAtRunsOfSpaces)
{
    EXPECT_EQ(splitCommand("/bin/a"), Texts({"/bin/a"}));
    EXPECT_EQ(splitCommand("/bin/a   rm x"), Texts({"/bin/a", "rm", "x"}));
    EXPECT_EQ(splitCommand("  /bin/a scan  "), Texts({"/bin/a", "scan"}));
}

TEST(SplitCommand, LeavesEveryOtherCharacterAlone)
{
    for (const char* argument : {"a\tb", "a\nb", "'a'", "\"", "$(a)", "`a`", "a;b", "a|b", ">a",
                                 "*", "~", "\\", "%s", "#", "a=b", "\xff"})
        EXPECT_EQ(splitCommand(std::string("/bin/a ") + argument), Texts({"/bin/a", argument}));
}

TEST(SplitCommand, WantsAnAbsolutePath)
{
    EXPECT_THROW(splitCommand(""), std::invalid_argument);
    EXPECT_THROW(splitCommand("  "), std::invalid_argument);
    EXPECT_THROW(splitCommand("a"), std::invalid_argument);
    EXPECT_THROW(splitCommand("./a /b"), std::invalid_argument);
    EXPECT_THROW(splitCommand("\t/bin/a"), std::invalid_argument);
}

TEST(SplitCommand, RefusesANulByte)
{
    EXPECT_THROW(splitCommand(std::string("/bin/a b\0c", 10)), std::invalid_argument);
}

TEST(ChildEnvironment, IsTheHostsInTheCLocale)
{
    const char* const host[] = {"PATH=/bin",    "LANG=de_DE",  "LANGUAGE=de:en",
                                "LC_ALL=de_DE", "LANGUAGES=x", nullptr};
    EXPECT_EQ(childEnvironment(host, ""),
              Texts({"PATH=/bin", "LANG=de_DE", "LANGUAGES=x", "LC_ALL=C"}));
}

TEST(ChildEnvironment, OfAHostWithoutVariablesIsTheLocale)
{
    const char* const host[] = {nullptr};
    EXPECT_EQ(childEnvironment(host, ""), Texts({"LC_ALL=C"}));
    EXPECT_EQ(childEnvironment(nullptr, ""), Texts({"LC_ALL=C"}));
}

TEST(ChildEnvironment, AdditionsJoinAndReplace)
{
    const char* const host[] = {"A=1", "AB=1", "A=2", nullptr};
    EXPECT_EQ(childEnvironment(host, "A=3\nB=x=y z\nC="),
              Texts({"AB=1", "LC_ALL=C", "A=3", "B=x=y z", "C="}));
    EXPECT_EQ(childEnvironment(host, "\nLC_ALL=de\n\nA=3\nA=4\n"),
              Texts({"AB=1", "LC_ALL=de", "A=4"}));
}

TEST(ChildEnvironment, RefusesWhatIsNoVariable)
{
    for (const std::string& addition :
         {std::string("A"), std::string("=1"), std::string("A=1\nB"), std::string("A=\0", 3)})
        EXPECT_THROW(childEnvironment(nullptr, addition), std::invalid_argument);
}

TEST(CheckedDirectory, RefusesANulByte)
{
    EXPECT_EQ(checkedDirectory("/a b"), "/a b");
    EXPECT_THROW(checkedDirectory(std::string("/a\0b", 4)), std::invalid_argument);
}

TEST(LookUpUser, FindsAnAccountWithItsGroups)
{
    const Identity root = lookUpUser("root");
    EXPECT_EQ(root.user, 0);
    EXPECT_EQ(root.group, 0);
    EXPECT_FALSE(root.groups.empty());
}

TEST(LookUpUser, RefusesAnAccountThatIsNotThere)
{
    EXPECT_THROW(lookUpUser("no such user"), std::invalid_argument);
    EXPECT_THROW(lookUpUser(std::string("root\0x", 6)), std::invalid_argument);
}

} // namespace
