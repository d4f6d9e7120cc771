#include "active_command.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "running_tools.h"

namespace {

using testing::IsEmpty;
using testing::Not;

class ActiveInterrupt : public ActiveCommand {
protected:
    /// Waits until `number` tools have been called.
    void awaitCalls(const Process& process, std::size_t number) const
    {
        while (log().size() < number && !process.endsWithin(5))
            continue;
        ASSERT_EQ(log().size(), number);
    }

    /// Sends the signal, and expects the status soon and no tool left running.
    void expectEnd(Process& process, int signal, int status) const
    {
        process.signal(signal);
        EXPECT_TRUE(process.endsWithin(3000));
        const Result ended = process.finish();
        EXPECT_EQ(ended.status, status);
        EXPECT_EQ(ended.errors, "");
        EXPECT_THAT(runningTools(statePath()), IsEmpty());
    }
};

TEST_F(ActiveInterrupt, EndsTheToolThatHangs)
{
    const std::pair<int, int> signals[] = {
        {SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}, {SIGQUIT, 131}};
    for (const auto& [signal, status] : signals) {
        std::filesystem::remove(logPath());
        useScenario("hanging-tool");
        Process process(active({"/dev/sdc"}));
        awaitCalls(process, 1);
        EXPECT_THAT(runningTools(statePath()), Not(IsEmpty()));
        expectEnd(process, signal, status);
        EXPECT_EQ(log().size(), 1U);
    }
}

TEST_F(ActiveInterrupt, EndsTheToolsOfAllJobs)
{
    useScenario("hanging-tool");
    Process process(
        active({"-j4", "-J", "/dev/sda", "/dev/sdb", "/dev/sdc", "/dev/sdd", "/dev/sde"}));
    awaitCalls(process, 4);
    EXPECT_EQ(runningTools(statePath()).size(), 4U);
    expectEnd(process, SIGINT, 130);
    EXPECT_EQ(log().size(), 4U);
}

TEST_F(ActiveInterrupt, EndsTheToolsOfPathsOnStandardInput)
{
    useScenario("hanging-tool");
    Process process(active({"-j2", "-"}));
    process.send("/dev/sda\n/dev/sdb\n/dev/sdc\n");
    awaitCalls(process, 2);
    EXPECT_EQ(runningTools(statePath()).size(), 2U);
    expectEnd(process, SIGINT, 130);
}

TEST_F(ActiveInterrupt, TheRowsAnsweredSoFarArePrintedAndJsonIsClosed)
{
    for (const auto& [signal, status] : {std::pair(SIGINT, 130), std::pair(SIGTERM, 143)}) {
        useFault({{"subcommand", "getdmpnode"}, {"call", 2}, {"hang", true}});
        std::filesystem::remove(logPath());
        Process process(active({"-J", "/dev/sdb", "/dev/sdc", "/dev/mapper/late"}));
        awaitCalls(process, 3);
        process.signal(signal);
        EXPECT_TRUE(process.endsWithin(3000));
        const Result ended = process.finish();
        EXPECT_EQ(ended.status, status);
        const Json paths = Json::parse(ended.output)["paths"];
        ASSERT_EQ(paths.size(), 1U);
        EXPECT_EQ(paths[0]["name"], "/dev/sdb");
        EXPECT_EQ(paths[0]["result"], "confirmed");
        EXPECT_THAT(runningTools(statePath()), IsEmpty());
    }
}

TEST_F(ActiveInterrupt, AnswersBehindAPathWithoutOneArePrintedToo)
{
    useFault({{"subcommand", "getdmpnode"}, {"hang", true}});
    Process process(active({"-j2", "-r", "-n", "-o", "NAME,RESULT", "/dev/sdb", "-"}));
    process.send("/dev/mapper/a\n/dev/mapper/b\n");
    awaitCalls(process, 1);
    EXPECT_FALSE(process.endsWithin(300));
    process.signal(SIGINT);
    EXPECT_TRUE(process.endsWithin(3000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 130);
    EXPECT_EQ(ended.output, "/dev/mapper/a not-asked\n/dev/mapper/b not-asked\n");
}

TEST_F(ActiveInterrupt, AReaderThatDoesNotReadIsNotWaitedForLong)
{
    std::string paths;
    for (int path = 0; path < 20000; ++path)
        paths += "/dev/mapper/a\n";
    const Descriptor input = fileHolding(paths);
    const Pipe output = makePipe();
    Setting setting;
    setting.input = input.number();
    setting.output = output.writer.number();
    Process process(active({"-"}), setting);
    EXPECT_FALSE(process.endsWithin(500));
    process.signal(SIGTERM);
    EXPECT_TRUE(process.endsWithin(10000));
    EXPECT_EQ(process.finish().status, 143);
}

TEST_F(ActiveInterrupt, ToolsHaveNoSignalsBlocked)
{
    useScenario("hanging-tool");
    Process process(active({"/dev/sdc"}));
    awaitCalls(process, 1);
    for (const std::string& tool : runningTools(statePath()))
        EXPECT_THAT(textOf(tool + "/status"), testing::HasSubstr("SigBlk:\t0000000000000000"));
    expectEnd(process, SIGINT, 130);
}

TEST_F(ActiveInterrupt, AToolThatHasPrintedAllItWillIsEndedToo)
{
    useScenario("fault-hang-after-output");
    Process process(active({"/dev/sdc"}));
    awaitCalls(process, 1);
    expectEnd(process, SIGINT, 130);
}

/// A shell line that starts a child with a group of its own, prints its id and becomes the command.
constexpr char withChild[] = "set -m; sleep 300 >/dev/null 2>&1 & echo $!; exec \"$@\"";

/// Ends the process. Returns whether it was running; a zombie was not.
bool endSleeper(const std::string& id)
{
    const std::string arguments = textOf("/proc/" + id + "/cmdline");
    kill(std::stoi(id), SIGKILL);
    return arguments == std::string("sleep\0"
                                    "300",
                                    9) +
                            '\0';
}

TEST_F(ActiveInterrupt, AChildThatItWasExecutedWithIsLeftAlone)
{
    useScenario("hanging-tool");
    std::vector<std::string> shell{"bash", "-c", withChild, "bash"};
    const std::vector<std::string> command = active({"/dev/sdc"});
    shell.insert(shell.end(), command.begin(), command.end());
    Process process(shell);
    const std::string child = process.receiveLine();
    awaitCalls(process, 1);
    expectEnd(process, SIGTERM, 143);
    EXPECT_TRUE(endSleeper(child.substr(0, child.size() - 1)));
}

TEST_F(ActiveInterrupt, AnOutputThatFailsLeavesSuchAChildAloneToo)
{
    useFault({{"subcommand", "getdmpnode"}, {"hang", true}});
    std::vector<std::string> shell{"bash", "-c", std::string(withChild) + " >/dev/full", "bash"};
    const std::vector<std::string> command = active({"/dev/mapper/a", "/dev/sdb"});
    shell.insert(shell.end(), command.begin(), command.end());
    Process process(shell);
    const std::string child = process.receiveLine();
    EXPECT_TRUE(process.endsWithin(10000));
    EXPECT_EQ(process.finish().status, 1);
    EXPECT_THAT(runningTools(statePath()), IsEmpty());
    EXPECT_TRUE(endSleeper(child.substr(0, child.size() - 1)));
}

TEST_F(ActiveInterrupt, ToolsThatItCannotSeeAreSpokenOf)
{
    useScenario("hanging-tool");
    // Another process namespace's /proc. The shell is the first process: all end with it.
    const std::string script = "\"$@\" & until test -s " + logPath() +
                               "; do sleep 0.01; done; kill -TERM $!; wait $!; echo $?";
    const std::vector<std::string> shell{"unshare", "-pf",  "--kill-child", "bash",
                                         "-c",      script, "bash"};
    std::vector<std::string> command = active({"/dev/sdc"});
    command.insert(std::find(command.begin(), command.end(), "env"), shell.begin(), shell.end());
    const Result ended = Process(command).finish();
    EXPECT_EQ(splitLines(ended.output).back(), "143");
    EXPECT_EQ(ended.errors,
              "dmpclaim: a tool may still run: it did not end, or could not be found; see 'ps -C "
              "kodmpadm,kodisk'\n");
}

TEST_F(ActiveInterrupt, APauseIsNotWaitedFor)
{
    useFault({{"subcommand", "getdmpnode"}, {"exit", 3}});
    Process process(active({"/dev/sdc"}, "60000"));
    while (sleeps().empty() && !process.endsWithin(5))
        continue;
    expectEnd(process, SIGINT, 130);
    EXPECT_EQ(log().size(), 1U);
}

TEST_F(ActiveInterrupt, AnIgnoredSignalStaysIgnored)
{
    useScenario("hanging-tool");
    std::vector<std::string> command = active({"/dev/sdc"});
    for (std::string& argument : command) {
        if (argument.rfind("--default-signal", 0) == 0)
            argument = "--ignore-signal=INT";
    }
    Process process(command);
    awaitCalls(process, 1);
    process.signal(SIGINT);
    EXPECT_FALSE(process.endsWithin(300));
    expectEnd(process, SIGTERM, 143);
}

TEST_F(ActiveInterrupt, AReaderThatGoesAwayLeavesNoToolEither)
{
    std::vector<std::string> shell{"bash", "-c", "\"$@\" | read -r heading; echo ${PIPESTATUS[0]}",
                                   "bash"};
    const std::vector<std::string> command = active({"/dev/mapper/a", "/dev/sdb", "/dev/mapper/b"});
    shell.insert(shell.end(), command.begin(), command.end());
    useFault({{"subcommand", "getdmpnode"}, {"delay_ms", 500}});
    Process process(shell);
    EXPECT_TRUE(process.endsWithin(20000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.output, "141\n");
    EXPECT_EQ(ended.errors, "");
    EXPECT_THAT(runningTools(statePath()), IsEmpty());
}

TEST_F(ActiveInterrupt, AnOutputThatFailsLeavesNoToolEither)
{
    useFault({{"subcommand", "getdmpnode"}, {"hang", true}});
    std::vector<std::string> shell{"bash", "-c", "\"$@\" >/dev/full", "bash"};
    const std::vector<std::string> command = active({"/dev/mapper/a", "/dev/sdb"});
    shell.insert(shell.end(), command.begin(), command.end());
    Process process(shell);
    EXPECT_TRUE(process.endsWithin(10000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "dmpclaim: cannot write to standard output: No space left on device\n");
    EXPECT_LE(log().size(), 1U);
    EXPECT_THAT(runningTools(statePath()), IsEmpty());
}

TEST_F(ActiveInterrupt, AtATerminalTheProgressIsErased)
{
    useFault({{"subcommand", "getdmpnode"}, {"exit", 3}});
    const std::filesystem::path typescript = folder() / "typescript";
    std::string line;
    for (const std::string& word : active({"--color=never", "/dev/sdc"}, "60000"))
        line += "'" + word + "' ";
    Process process({"script", "-qefc", line, typescript});
    while (textOf(typescript).find("next one in") == std::string::npos && !process.endsWithin(5))
        continue;
    process.send("\x03");
    EXPECT_TRUE(process.endsWithin(3000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 130);
    EXPECT_THAT(ended.output, testing::HasSubstr(" s\x1b[K^C\r\x1b[KNAME"));
    EXPECT_THAT(runningTools(statePath()), IsEmpty());
}

} // namespace
