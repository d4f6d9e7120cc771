#include "simulated_tools.h"

#include <csignal>
#include <set>

namespace {

constexpr int notPermitted = 77;

/// `with_tools.sh` with the tools of this build.
class WithTools : public SimulatedTools {
protected:
    WithTools() { useScenario("healthy"); }

    void SetUp() override
    {
        if (run({"true"}).status == notPermitted)
            endWithoutNamespaces();
    }

    std::vector<std::string> line(const std::vector<std::string>& command) const
    {
        std::vector<std::string> all{SIMULATOR_WITH_TOOLS, "--tools", SIMULATOR_TOOLS, statePath()};
        all.insert(all.end(), command.begin(), command.end());
        return all;
    }

    Result run(const std::vector<std::string>& command) const
    {
        return Process(line(command)).finish();
    }

    /// The same with this shell script as `unshare`.
    Result runWithUnshare(const std::string& script, const std::vector<std::string>& command) const
    {
        writeScript(folder() / "unshare", script);
        std::vector<std::string> all = line(command);
        const std::string path = folder().string() + ":/usr/bin:/bin:/usr/sbin:/sbin";
        all.insert(all.begin(), {"/usr/bin/env", "PATH=" + path});
        return Process(all).finish();
    }
};

TEST_F(WithTools, TheToolsAreInUsrSbin)
{
    EXPECT_THAT(run({"/usr/sbin/kodmpadm", "getdmpnode", "nodename=sdc"}), Succeeds(healthyNode));
    EXPECT_THAT(run({"/usr/sbin/kodisk", "rm", "arr0_17"}), Succeeds());
    EXPECT_EQ(state()["calls"], Json({{"getdmpnode", 1}, {"rm", 1}}));
}

TEST_F(WithTools, TheOtherProgramsOfUsrSbinStay)
{
    std::set<std::string> expected{"kodmpadm", "kodisk"};
    for (const auto& file : std::filesystem::directory_iterator("/usr/sbin"))
        expected.insert(file.path().filename());
    const std::vector<std::string> found = splitLines(run({"ls", "-A", "/usr/sbin"}).output);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected);
}

TEST_F(WithTools, NobodyElseSeesTheTools)
{
    const std::string seen = run({"sh", "-c", "stat -c %i /usr/sbin/kodmpadm"}).output;
    EXPECT_NE(seen, "");
    EXPECT_NE(Process({"/usr/bin/stat", "-c", "%i", "/usr/sbin/kodmpadm"}).finish().output, seen);
}

TEST_F(WithTools, UsrSbinCannotBeChanged)
{
    EXPECT_THAT(run({"touch", "/usr/sbin/kodmpadm.new"}).errors,
                testing::HasSubstr("Read-only file system"));
}

TEST_F(WithTools, TheCommandGetsItsArgumentsFolderAndStateUnchanged)
{
    EXPECT_EQ(run({"printf", "<%s>", "a b", "", "*", "$HOME", "-x"}).output,
              "<a b><><*><$HOME><-x>");
    EXPECT_EQ(run({"sh", "-c", "pwd; echo $KOVM_SIMULATOR_STATE"}).output,
              std::filesystem::current_path().string() + "\n" + statePath() + "\n");
}

TEST_F(WithTools, TheCommandsStatusAndSignalsAreItsOwn)
{
    EXPECT_EQ(run({"sh", "-c", "exit 43"}).status, 43);
    EXPECT_EQ(run({"sh", "-c", "exit 77"}).status, 77);
    EXPECT_THAT(run({"sh", "-c", "kill -KILL $$"}), DiesBy(SIGKILL));
    EXPECT_EQ(run({"/nowhere/command"}).status, 127);
}

TEST_F(WithTools, TheCommandTakesTheScriptsPlace)
{
    std::vector<std::string> all = line({"sh", "-c", "echo $$"});
    all.insert(all.begin(), {"/bin/sh", "-c", "echo $$; exec \"$@\"", "sh"});
    const std::vector<std::string> ids = splitLines(Process(all).finish().output);
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(ids[0], ids[1]);
}

TEST_F(WithTools, TheToolsFolderCanHaveAnyName)
{
    const std::filesystem::path tools = folder() / "-a:b,c\\d \"e";
    copy(std::filesystem::path(SIMULATOR_TOOLS), tools);
    const std::vector<std::string> command{SIMULATOR_WITH_TOOLS, "--tools", tools,
                                           statePath(),          "kodisk",  "scandisks"};
    EXPECT_THAT(Process(command).finish(), Succeeds());
}

TEST_F(WithTools, ARelativeToolsFolderIsNotLookedUpInCdpath)
{
    const std::filesystem::path planted = folder() / "planted";
    create_directories(planted / "tools");
    create_directory(folder() / "tools");
    for (const char* name : {"kodmpadm", "kodisk"}) {
        writeScript(planted / "tools" / name, "echo planted");
        copy_file(SIMULATOR_TOOLS "/kodisk", folder() / "tools" / name);
    }
    const std::string script = "cd \"$1\" && export CDPATH=\"$2\" && shift 2 && exec \"$@\"";
    EXPECT_THAT(Process({"/bin/sh", "-c", script, "sh", folder(), planted, SIMULATOR_WITH_TOOLS,
                         "--tools", "tools", statePath(), "kodisk", "scandisks"})
                    .finish(),
                Succeeds());
}

TEST_F(WithTools, AToolsFolderCanBeNamedMinus)
{
    copy(std::filesystem::path(SIMULATOR_TOOLS), folder() / "-");
    const std::string script = "cd / && cd \"$1\" && shift && exec \"$@\"";
    EXPECT_THAT(Process({"/bin/sh", "-c", script, "sh", folder(), SIMULATOR_WITH_TOOLS, "--tools",
                         "-", statePath(), "kodisk", "scandisks"})
                    .finish(),
                Succeeds());
}

TEST_F(WithTools, NobodyCanUseItToo)
{
    const std::vector<std::string> nobody{"/usr/bin/setpriv", "--reuid=65534", "--regid=65534",
                                          "--clear-groups"};
    std::vector<std::string> probe = nobody;
    probe.insert(probe.end(), {"test", "-x", SIMULATOR_TOOLS "/kodmpadm"});
    if (Process(probe).finish().status != 0)
        GTEST_SKIP() << "not root, or the build is out of reach for nobody";
    permissions(folder(), std::filesystem::perms::all);
    std::vector<std::string> all = line({"/usr/sbin/kodmpadm", "getdmpnode", "nodename=sdc"});
    all.insert(all.begin(), nobody.begin(), nobody.end());
    EXPECT_THAT(Process(all).finish(), Succeeds(healthyNode));
}

TEST_F(WithTools, WithoutMountNamespacesAUserNamespaceServes)
{
    EXPECT_EQ(runWithUnshare("[ $1 = -Urm ] && exec /usr/bin/unshare \"$@\"; exit 1",
                             {"sh", "-c", "id -u; exit 5"})
                  .status,
              5);
}

TEST_F(WithTools, WhereNoNamespaceIsPermittedItSaysSo)
{
    EXPECT_THAT(runWithUnshare("echo 'Operation not permitted' >&2; exit 1", {"true"}),
                Fails(notPermitted,
                      "no private mount namespace is permitted here: Operation not permitted"));
}

TEST_F(WithTools, WrongArgumentsAreNamed)
{
    const std::pair<std::vector<std::string>, std::string> calls[] = {
        {{}, "usage: with_tools.sh"},
        {{statePath()}, "usage: with_tools.sh"},
        {{"--tools"}, "usage: with_tools.sh"},
        {{"--tools", SIMULATOR_TOOLS, statePath()}, "usage: with_tools.sh"},
        {{folder() / "none.json", "true"}, "no state file " + (folder() / "none.json").string()},
    };
    for (const auto& [arguments, message] : calls) {
        std::vector<std::string> all{SIMULATOR_WITH_TOOLS};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_THAT(Process(all).finish(), Fails(2, message));
    }
    EXPECT_THAT(Process({SIMULATOR_WITH_TOOLS, "--tools", folder(), statePath(), "true"}).finish(),
                Fails(2, "no tools in " + folder().string()));
}

} // namespace
