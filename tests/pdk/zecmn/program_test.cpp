#include "pdk/zecmn/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <system_error>

#include <dlfcn.h>
#include <grp.h>
#include <pwd.h>

using koze_pdk_4_4::runner::checkedDirectory;
using koze_pdk_4_4::runner::childEnvironment;
using koze_pdk_4_4::runner::Identity;
using koze_pdk_4_4::runner::lookUpUser;
using koze_pdk_4_4::runner::splitCommand;

namespace {

using Texts = std::vector<std::string>;

/// The accounts of the host. Without an object, tests use the machine's.
struct Accounts {
    int groups = 0;            // of every account
    std::size_t textsSize = 0; // of every account
    bool memory = true;
    int error = 0;
    std::optional<passwd> entry; // of every account
};

const Accounts* accounts;

class LookUpUser : public testing::Test {
protected:
    LookUpUser() { accounts = &m_accounts; }
    ~LookUpUser() override { accounts = nullptr; }

    Accounts m_accounts;
};

} // namespace

extern "C" int getgrouplist(const char* name, gid_t group, gid_t* groups, int* count)
{
    if (accounts == nullptr || accounts->groups == 0) {
        static auto* const real =
            reinterpret_cast<decltype(&getgrouplist)>(dlsym(RTLD_NEXT, "getgrouplist"));
        return real(name, group, groups, count);
    }
    if (!accounts->memory)
        return -1;
    const int room = *count;
    *count = accounts->groups;
    std::iota(groups, groups + std::min(room, *count), group);
    return room < *count ? -1 : *count;
}

extern "C" int getpwnam_r(const char* name, passwd* entry, char* texts, std::size_t size,
                          passwd** found)
{
    *found = nullptr;
    if (accounts != nullptr && accounts->error != 0)
        return accounts->error;
    if (accounts != nullptr && size < accounts->textsSize)
        return ERANGE;
    if (accounts != nullptr && accounts->entry) {
        *entry = *accounts->entry;
        *found = entry;
        return 0;
    }
    static auto* const real =
        reinterpret_cast<decltype(&getpwnam_r)>(dlsym(RTLD_NEXT, "getpwnam_r"));
    return real(name, entry, texts, size, found);
}

namespace {

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

TEST(ChildEnvironment, AnAccountsVariablesReplaceTheHostsAndAdditionsReplaceThem)
{
    const char* const host[] = {"HOME=/root", "USERS=1", "USER=root", nullptr};
    const Identity account{1, 1, {}, {"HOME=/home/a", "USER=a"}};
    EXPECT_EQ(childEnvironment(host, "", account),
              Texts({"USERS=1", "LC_ALL=C", "HOME=/home/a", "USER=a"}));
    EXPECT_EQ(childEnvironment(host, "HOME=/", account),
              Texts({"USERS=1", "LC_ALL=C", "USER=a", "HOME=/"}));
}

TEST(CheckedDirectory, RefusesANulByte)
{
    EXPECT_EQ(checkedDirectory("/a b"), "/a b");
    EXPECT_THROW(checkedDirectory(std::string("/a\0b", 4)), std::invalid_argument);
}

TEST_F(LookUpUser, FindsAnAccountWithItsGroups)
{
    const Identity root = lookUpUser("root");
    EXPECT_EQ(root.user, 0);
    EXPECT_EQ(root.group, 0);
    EXPECT_FALSE(root.groups.empty());
}

TEST_F(LookUpUser, FindsEveryGroupAndNoOther)
{
    for (const int count : {1, 31, 32, 33, 1000}) {
        m_accounts.groups = count;
        std::vector<gid_t> groups(static_cast<std::size_t>(count));
        std::iota(groups.begin(), groups.end(), 0);
        EXPECT_EQ(lookUpUser("root").groups, groups);
    }
}

TEST_F(LookUpUser, DoesNotAskForEverWhenThereIsNoMemory)
{
    m_accounts.groups = 1;
    m_accounts.memory = false;
    EXPECT_THROW(lookUpUser("root"), std::bad_alloc);
}

TEST_F(LookUpUser, FindsAnAccountWithLongTexts)
{
    m_accounts.textsSize = 100000;
    EXPECT_EQ(lookUpUser("root").user, 0);
}

TEST_F(LookUpUser, FindsAnAccountsVariables)
{
    char name[] = "alias";
    char home[] = "/home/a b";
    char shell[] = "/bin/zsh";
    char none[] = "";
    m_accounts.groups = 1;
    m_accounts.entry = passwd{name, none, 1, 1, none, home, shell};
    EXPECT_EQ(lookUpUser("a").variables,
              Texts({"HOME=/home/a b", "USER=alias", "LOGNAME=alias", "SHELL=/bin/zsh"}));
    for (char* missing : {none, static_cast<char*>(nullptr)}) {
        m_accounts.entry->pw_dir = m_accounts.entry->pw_shell = missing;
        EXPECT_EQ(lookUpUser("a").variables,
                  Texts({"HOME=/", "USER=alias", "LOGNAME=alias", "SHELL=/bin/sh"}));
    }
}

TEST_F(LookUpUser, RefusesNumbersThatWouldLeaveTheHostsInPlace)
{
    char text[] = "a";
    constexpr auto unchanged = static_cast<uid_t>(-1);
    m_accounts.groups = 2;
    const auto refusal = [&](uid_t user, gid_t group) -> std::string {
        m_accounts.entry = passwd{text, text, user, group, text, text, text};
        try {
            lookUpUser("a");
            return {};
        } catch (const std::invalid_argument& reason) {
            return reason.what();
        }
    };
    const std::string reason = "user a or a group of it has the number 4294967295, which is none";
    EXPECT_EQ(refusal(unchanged, 1), reason);
    EXPECT_EQ(refusal(1, unchanged), reason);
    EXPECT_EQ(refusal(1, unchanged - 1), reason); // its second group
    EXPECT_EQ(refusal(unchanged - 1, unchanged - 2), "");
}

TEST_F(LookUpUser, SaysThatTheLookUpFailed)
{
    m_accounts.error = EIO;
    try {
        lookUpUser("root");
        ADD_FAILURE();
    } catch (const std::system_error& reason) {
        EXPECT_STREQ(reason.what(), "cannot look up user root: Input/output error");
    }
}

TEST_F(LookUpUser, RefusesAnAccountThatIsNotThere)
{
    EXPECT_THROW(lookUpUser("no such user"), std::invalid_argument);
    EXPECT_THROW(lookUpUser(std::string("root\0x", 6)), std::invalid_argument);
}

} // namespace
