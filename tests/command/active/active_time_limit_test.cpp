#include "active_command.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Tools written by the test, in place of the simulated ones.
class ActiveTimeLimit : public ActiveCommand {
protected:
    /// `kodmpadm` runs this shell script, which finds its process id in $$; `kodisk` succeeds.
    void useTool(const std::string& script) const
    {
        std::filesystem::create_directory(tools());
        writeTool("kodmpadm", script);
        writeTool("kodisk", "exit 0");
    }

    std::vector<std::string> withTools(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> command = active(arguments);
        command[2] = tools();
        return command;
    }

    /// The answers when the tools are the simulated ones. Expects the status, and an end well
    /// before the tools would end.
    static Json paths(const std::vector<std::string>& command, int status)
    {
        const auto begin = std::chrono::steady_clock::now();
        const Result ended = Process(command).finish();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
        EXPECT_EQ(ended.status, status);
        EXPECT_EQ(ended.errors, "");
        return Json::parse(ended.output)["paths"];
    }

    /// Whether a process that wrote its id to the file still runs.
    /// A zombie has no command line.
    bool runs(const char* file) const
    {
        std::string id = textOf(folder() / file);
        id.pop_back();
        return !textOf("/proc/" + id + "/cmdline").empty();
    }

private:
    std::filesystem::path tools() const { return folder() / "tools"; }

    void writeTool(const char* name, const std::string& script) const
    {
        std::ofstream(tools() / name) << "#!/bin/sh\n" << script << "\n";
        permissions(tools() / name, std::filesystem::perms::owner_all);
    }
};

constexpr char late[] = "the time limit passed during kodmpadm getdmpnode";

TEST_F(ActiveTimeLimit, EndsAToolThatHangs)
{
    for (const char* scenario : {"hanging-tool", "fault-hang-after-output"}) {
        useScenario(scenario);
        const Json path = paths(active({"-J", "--timeout", "0.3", "/dev/sdc"}), 32)[0];
        EXPECT_EQ(path["result"], "timed-out");
        EXPECT_EQ(path["reason"], late);
        EXPECT_EQ(path["active"], "/dev/sdc");
        EXPECT_EQ(path["changed"], false);
        EXPECT_THAT(outline(path["timeline"]), ElementsAre("getdmpnode 1015"));
        EXPECT_GE(path["took"].get<double>(), 0.2);
    }
}

TEST_F(ActiveTimeLimit, KillsAToolThatIgnoresSigterm)
{
    useTool("trap '' TERM; echo $$ >" + (folder() / "id").string() +
            "; while :; do sleep 0.01; done");
    const Json path = paths(withTools({"-J", "--timeout=0.2", "/dev/sdc"}), 32)[0];
    EXPECT_EQ(path["result"], "timed-out");
    EXPECT_THAT(outline(path["timeline"]), ElementsAre("getdmpnode 1009"));
    EXPECT_FALSE(runs("id"));
}

TEST_F(ActiveTimeLimit, EndsAToolThatPrintsOnAndOn)
{
    useTool("echo $$ >" + (folder() / "id").string() + "; while :; do echo x; sleep 0.001; done");
    const Json path = paths(withTools({"-J", "--timeout=0.3", "/dev/sdc"}), 32)[0];
    EXPECT_EQ(path["result"], "timed-out");
    EXPECT_EQ(path["reason"], late);
    EXPECT_FALSE(runs("id"));
}

TEST_F(ActiveTimeLimit, AToolThatFloodsAndIgnoresSigtermIsLeftNoLonger)
{
    useTool("trap '' TERM; echo $$ >" + (folder() / "id").string() + "; while :; do echo " +
            std::string(100, 'x') + "; done");
    const Json path = paths(withTools({"-J", "--once", "--timeout=0.3", "/dev/sdc"}), 32)[0];
    EXPECT_EQ(path["result"], "timed-out");
    EXPECT_FALSE(runs("id"));
}

TEST_F(ActiveTimeLimit, EndsWhatAToolHasStarted)
{
    const std::string file = folder() / "id";
    useTool("sh -c 'echo $$ >" + file + "; trap \"\" TERM; while :; do sleep 0.01; done' & wait");
    EXPECT_EQ(paths(withTools({"-J", "--timeout=0.5", "/dev/sdc"}), 32)[0]["result"], "timed-out");
    EXPECT_FALSE(runs("id"));
}

TEST_F(ActiveTimeLimit, AToolThatCannotBeEndedIsNotWaitedFor)
{
    useScenario("hanging-tool");
    // Another process namespace's /proc shows no tools. The command is its first process, so that
    // the tool ends with it.
    const std::vector<std::string> unshare{"unshare", "-pf", "--kill-child"};
    std::vector<std::string> command =
        active({"-J", "-j2", "--timeout=0.2", "/dev/sdc2", "/dev/mapper/a"});
    command.insert(std::find(command.begin(), command.end(), "env"), unshare.begin(),
                   unshare.end());
    // The leak sanitizer looks for its own process in /proc.
    command.insert(std::find(command.begin(), command.end(), "env") + 1,
                   "LSAN_OPTIONS=detect_leaks=0");
    Process process(command);
    EXPECT_TRUE(process.endsWithin(20000)); // it takes little more than three seconds
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 64);
    EXPECT_THAT(ended.errors, testing::StartsWith("dmpclaim: a tool may still run: "));
    const Json answers = Json::parse(ended.output)["paths"];
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0]["name"], "/dev/sdc2");
    EXPECT_EQ(answers[0]["owner"], "native");
    EXPECT_EQ(answers[0]["disk"], "/dev/sdc");
    EXPECT_EQ(answers[0]["active"], "/dev/sdc2");
    EXPECT_EQ(answers[0]["result"], "timed-out");
    EXPECT_EQ(answers[0]["reason"], "the time limit passed, and the lookup does not end");
    EXPECT_EQ(answers[1]["result"], "not-asked");
}

TEST_F(ActiveTimeLimit, CountsForAllPathsTogether)
{
    useScenario("hanging-tool");
    const Json answers =
        paths(active({"-J", "--timeout=0.3", "/dev/sdb", "/dev/mapper/a", "/dev/sdc1"}), 64);
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_EQ(answers[0]["reason"], late);
    EXPECT_EQ(answers[1]["result"], "not-asked");
    EXPECT_EQ(answers[2]["result"], "timed-out");
    EXPECT_EQ(answers[2]["reason"], "the time limit passed before the volume manager was asked");
    EXPECT_EQ(answers[2]["active"], "/dev/sdc1");
    EXPECT_EQ(answers[2]["disk"], "/dev/sdc");
    EXPECT_THAT(answers[2]["timeline"], IsEmpty());
    EXPECT_EQ(log().size(), 1U);
}

TEST_F(ActiveTimeLimit, EndsTheToolsOfAllJobs)
{
    useScenario("hanging-tool");
    for (const Json& path : paths(
             active({"-J", "-j3", "--timeout=0.5", "/dev/sdb", "/dev/sdc", "/dev/sdd", "/dev/sde"}),
             32))
        EXPECT_EQ(path["result"], "timed-out");
    EXPECT_EQ(log().size(), 3U);
}

TEST_F(ActiveTimeLimit, AnAttemptForWhichThereIsNoTimeIsNotWaitedFor)
{
    useScenario("failing-tool");
    const Json path = paths(active({"-J", "--timeout=4", "/dev/sdc"}), 32)[0];
    EXPECT_EQ(path["result"], "tool-failed");
    EXPECT_EQ(path["reason"], "kodmpadm getdmpnode ended with status 3, 'ERROR the volume manager "
                              "is not running'; the time limit leaves no time for another attempt");
    EXPECT_THAT(sleeps(), IsEmpty());
    EXPECT_EQ(paths(active({"-J", "--timeout=9", "--refresh", "/dev/sdc"}), 32)[0]["result"],
              "tool-failed");
    EXPECT_THAT(sleeps(), IsEmpty());
}

TEST_F(ActiveTimeLimit, WithTimeEnoughItChangesNothing)
{
    EXPECT_EQ(paths(active({"-J", "--timeout", "1000000", "/dev/sdc"}), 0)[0]["active"],
              "/dev/sdb");
    useScenario("failing-tool");
    EXPECT_EQ(paths(active({"-J", "--timeout", "100", "/dev/sdc"}), 32)[0]["timeline"].size(), 12U);
}

TEST_F(ActiveTimeLimit, IsNotSpentOnAnInputThatDoesNotCome)
{
    Process process(active({"-J", "--timeout=0.3", "/dev/sdc", "-"}));
    process.send("/dev/sdb\n/dev/sd");
    EXPECT_TRUE(process.endsWithin(10000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "dmpclaim: the time limit passed before standard input ended; later "
                            "paths have no rows\n");
    const Json answers = Json::parse(ended.output)["paths"];
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[1]["active"], "/dev/sdb");
}

TEST_F(ActiveTimeLimit, PathsThatStandardInputHasAlreadyGetRows)
{
    useScenario("hanging-tool");
    std::string input;
    for (int path = 0; path < 2000; ++path)
        input += "/dev/sd" + std::string(1, static_cast<char>('a' + path % 26)) + '\n';
    const Result ended =
        Process(active({"-n", "-o", "RESULT", "--timeout=0.3", "-"})).finish(input);
    EXPECT_EQ(ended.status, 32);
    const std::vector<std::string> rows = splitLines(ended.output);
    EXPECT_EQ(rows.size(), 2000U);
    EXPECT_THAT(rows, testing::Each("timed-out"));
    EXPECT_EQ(log().size(), 1U);
}

TEST_F(ActiveTimeLimit, AnInputWithoutAnEndIsNotReadForLong)
{
    useScenario("hanging-tool");
    std::vector<std::string> shell{"bash", "-c", "yes /dev/sdc | \"$@\" | tail -1", "bash"};
    const std::vector<std::string> command = active({"-n", "-o", "RESULT", "--timeout=0.2", "-"});
    shell.insert(shell.end(), command.begin(), command.end());
    Process process(shell);
    EXPECT_TRUE(process.endsWithin(15000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.output, "timed-out\n");
    EXPECT_THAT(ended.errors, testing::HasSubstr("before standard input ended"));
}

TEST_F(ActiveTimeLimit, AnInterruptAfterItHasItsStatus)
{
    useTool("trap '' TERM; echo $$ >" + (folder() / "id").string() +
            "; while :; do sleep 0.01; done");
    Process process(withTools({"--timeout=0.1", "/dev/sdc"}));
    while (textOf(folder() / "id").empty() && !process.endsWithin(5))
        continue;
    EXPECT_FALSE(process.endsWithin(150)); // past the limit; the tool gets half a second
    process.signal(SIGINT);
    EXPECT_EQ(process.finish().status, 130);
}

TEST_F(ActiveTimeLimit, NumbersHaveBounds)
{
    for (const char* limit :
         {"0", "0.0001", "1000001", "-1", "x", "1e3", ".5", "5.", "1,5", "inf"}) {
        const Result ended = Process(active({"--timeout", limit, "/dev/sdc"})).finish();
        EXPECT_EQ(ended.status, 2) << limit;
        EXPECT_THAT(ended.errors, testing::HasSubstr(std::string("'") + limit +
                                                     "' is not a time limit (0.001 to 1000000 "
                                                     "seconds)"));
    }
    for (const char* tries : {"0", "5", "-1", "x", "1.5"}) {
        const Result ended = Process(active({"--tries", tries, "/dev/sdc"})).finish();
        EXPECT_EQ(ended.status, 2) << tries;
        EXPECT_THAT(ended.errors, testing::HasSubstr(std::string("'") + tries +
                                                     "' is not a number of attempts (1 to 4)"));
    }
    EXPECT_THAT(Process(active({"--tries=1", "--once", "/dev/sdc"})).finish().errors,
                testing::HasSubstr("--once and --tries exclude each other"));
    EXPECT_THAT(log(), IsEmpty());
}

} // namespace
