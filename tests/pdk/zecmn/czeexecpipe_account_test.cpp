// Programs that run as another user: what they inherit from the host, and what they must not.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <linux/capability.h>
#include <linux/keyctl.h>
#include <pwd.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "exec_test.h"
#include "tests/support/child.h"

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::Not;

namespace {

/// The value of a line "NAME:\tVALUE" of this process's state.
std::string stateOf(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, name.size() + 1, name + ':') == 0)
            return line.substr(name.size() + 2);
    }
    return {};
}

/// Gives this process these capabilities, each in the permitted, effective and inheritable set.
bool setCapabilities(std::uint32_t set)
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct sets[2] = {{set, set, set}, {}};
    return syscall(SYS_capset, &header, sets) == 0;
}

class ExecAccount : public ExecTest {
protected:
    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root may become another user";
    }

    /// The lines that `show` prints when it runs as that user.
    Lines shown(const std::string& what, const std::string& user)
    {
        Settings settings;
        settings.user = user;
        EXPECT_EQ(exec("show " + what, settings), 0);
        return output();
    }
};

TEST_F(ExecAccount, HasItsUserAndGroups)
{
    const passwd* entry = getpwnam("nobody");
    ASSERT_NE(entry, nullptr);
    const auto user = std::to_string(entry->pw_uid);
    const auto group = std::to_string(entry->pw_gid);
    const Lines identity = shown("identity", "nobody");
    ASSERT_FALSE(identity.empty());
    EXPECT_EQ(identity.front(), user + ' ' + user + ' ' + group + ' ' + group);
    EXPECT_THAT(identity, AllOf(Contains(group), Not(Contains("0"))));
}

TEST_F(ExecAccount, EntersNoDirectoryThatIsClosedToIt)
{
    const std::string path = testing::TempDir() + mark();
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    Settings settings;
    settings.user = "nobody";
    settings.directory = path;
    EXPECT_THAT(refusal("show directory", settings),
                EndsWith("cannot enter its directory: Permission denied"));
    rmdir(path.c_str());
}

TEST_F(ExecAccount, WithNumber0EntersEveryDirectory)
{
    const std::string path = testing::TempDir() + mark();
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    Settings settings;
    settings.user = "root";
    settings.directory = path;
    EXPECT_EQ(exec("show directory", settings), 0);
    EXPECT_EQ(output(), Lines({path}));
    rmdir(path.c_str());
}

TEST_F(ExecAccount, HasVariablesOfItsOwn)
{
    const passwd* entry = getpwnam("nobody");
    ASSERT_NE(entry, nullptr);
    setenv("HOST_VARIABLE", "host's", 1);
    EXPECT_THAT(shown("environment", "nobody"),
                AllOf(Contains("HOME=" + std::string(entry->pw_dir)), Contains("USER=nobody"),
                      Contains("LOGNAME=nobody"), Contains("SHELL=" + std::string(entry->pw_shell)),
                      Contains("HOST_VARIABLE=host's")));
    Settings settings;
    settings.user = "nobody";
    settings.environment = "HOME=/chosen";
    EXPECT_EQ(exec("show environment", settings), 0);
    EXPECT_THAT(output(), AllOf(Contains("HOME=/chosen"), Contains("USER=nobody")));
    unsetenv("HOST_VARIABLE");
}

TEST_F(ExecAccount, LeadsASessionAndAGroup)
{
    EXPECT_EQ(shown("session", "nobody"), Lines({"leads both"}));
}

/// Gives this process, which leads no group, a controlling terminal.
bool takeTerminal()
{
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    return setsid() > 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0 &&
           open(ptsname(terminal), O_RDWR | O_CLOEXEC) >= 0 &&
           open("/dev/tty", O_RDWR | O_CLOEXEC) >= 0;
}

TEST_F(ExecAccount, HasNoTerminal)
{
    EXPECT_TRUE(holdsInChild([this] {
        return takeTerminal() && shown("terminal", "nobody") == Lines({"no terminal"}) &&
               shown("terminal", "") == Lines({"no terminal"});
    }));
}

/// A key in a new session keyring of this process.
std::string addKey(const char* text)
{
    syscall(SYS_keyctl, KEYCTL_JOIN_SESSION_KEYRING, nullptr);
    return std::to_string(
        syscall(SYS_add_key, "user", "secret", text, std::strlen(text), KEY_SPEC_SESSION_KEYRING));
}

TEST_F(ExecAccount, CannotReadTheHostsSessionKeyring)
{
    if (syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_USER_KEYRING, 1) < 0)
        GTEST_SKIP() << "there are no keyrings";
    EXPECT_TRUE(holdsInChild([this] {
        const std::string key = addKey("text");
        return shown("key " + key, "nobody") == Lines({"no such key"}) &&
               shown("key " + key, "") == Lines({"text"});
    }));
}

constexpr std::uint32_t hostsSet = 1U << CAP_SETUID | 1U << CAP_SETGID | 1U << CAP_DAC_OVERRIDE;

/// Switches this process to an ordinary user who has capabilities in every set.
bool switchToCapableUser()
{
    bool raised = prctl(PR_SET_KEEPCAPS, 1) == 0 && setresgid(1, 1, 1) == 0 &&
                  setresuid(1, 1, 1) == 0 && setCapabilities(hostsSet);
    for (const int capability : {CAP_SETUID, CAP_SETGID, CAP_DAC_OVERRIDE})
        raised = raised && prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, capability, 0, 0) == 0;
    return raised;
}

const Lines noCapability = {"CapInh:\t0000000000000000", "CapPrm:\t0000000000000000",
                            "CapEff:\t0000000000000000", "CapAmb:\t0000000000000000"};

TEST_F(ExecAccount, HasNoCapabilityOfRoot)
{
    EXPECT_TRUE(holdsInChild([this] {
        return setCapabilities(hostsSet) && shown("capabilities", "nobody") == noCapability;
    }));
}

TEST_F(ExecAccount, HasNoCapabilityOfAHostThatIsNotRoot)
{
    EXPECT_TRUE(holdsInChild([this] {
        return switchToCapableUser() && shown("capabilities", "nobody") == noCapability &&
               shown("capabilities", "") != noCapability;
    }));
}

TEST_F(ExecAccount, EntersNoDirectoryByTheHostsCapabilities)
{
    const std::string path = testing::TempDir() + mark();
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    EXPECT_TRUE(holdsInChild([&] {
        Settings settings;
        settings.user = "nobody";
        settings.directory = path;
        return switchToCapableUser() && chdir(path.c_str()) == 0 &&
               refusal("show directory", settings).find("cannot enter its directory") !=
                   std::string::npos;
    }));
    rmdir(path.c_str());
}

TEST_F(ExecAccount, WithNumber0HasRootsCapabilities)
{
    EXPECT_THAT(shown("capabilities", "root"), Contains("CapEff:\t" + stateOf("CapEff")));
}

bool enter(int policy, int priority)
{
    const sched_param wanted{priority};
    return sched_setscheduler(0, policy, &wanted) == 0;
}

TEST_F(ExecAccount, HasNoRealTimeClass)
{
    for (const int policy : {SCHED_FIFO, SCHED_RR}) {
        if (!holdsInChild([&] { return enter(policy, 1); }))
            GTEST_SKIP() << "real-time classes are not permitted";
        EXPECT_TRUE(holdsInChild([&] {
            return enter(policy, 1) &&
                   shown("scheduling", "nobody") ==
                       Lines({std::to_string(SCHED_OTHER | SCHED_RESET_ON_FORK)}) &&
                   shown("scheduling", "") == Lines({std::to_string(policy)});
        }));
    }
}

TEST_F(ExecAccount, KeepsAClassBelowTheNormalOne)
{
    EXPECT_TRUE(holdsInChild([this] {
        return enter(SCHED_IDLE, 0) &&
               shown("scheduling", "nobody") == Lines({std::to_string(SCHED_IDLE)});
    }));
}

TEST_F(ExecAccount, EndsInEveryWayThatAProgramEnds)
{
    Settings settings;
    settings.user = "nobody";
    EXPECT_EQ(exec("print 3 1 a\\n 2 why\\n", settings), 3);
    EXPECT_EQ(output(), Lines({"a", "why"}));
    EXPECT_EQ(exec("die_by 9", settings), 1009);
    EXPECT_EQ(exec("flood 1 100", settings), koze_pdk_4_4::CZeExecPipeBase::boundExceeded);
    settings.limit = 1;
    EXPECT_EQ(exec("hang", settings), koze_pdk_4_4::CZeExecPipeBase::deadlinePassed);
    EXPECT_EQ(output(), Lines({"hanging"}));
    expectNobodyLeft();
    EXPECT_EQ(refusal("/no/such/program", settings),
              "cannot run /no/such/program: it or its interpreter is missing: No such file or "
              "directory");
}

} // namespace
