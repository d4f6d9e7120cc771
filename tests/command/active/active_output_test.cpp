#include "active_command.h"

namespace {

class ActiveOutput : public ActiveCommand {};

TEST_F(ActiveOutput, ATableShowsTheActivePathAndHowTheLookupEnded)
{
    const Result ended = run({"/dev/sdb", "/dev/sdc", "/dev/mapper/mpatha"});
    EXPECT_EQ(ended.status, 0);
    const std::vector<std::string> lines = splitLines(ended.output);
    ASSERT_EQ(lines.size(), 4U);
    const std::string named = " +confirmed +the volume manager names /dev/sdb for node arr0_17";
    EXPECT_THAT(lines[0],
                testing::MatchesRegex("NAME +OWNER +ACTIVE +CHANGED +TOOK +DISK +RESULT +REASON"));
    EXPECT_THAT(lines[1],
                testing::MatchesRegex(
                    "/dev/sdb +native +/dev/sdb +no +[0-9]+\\.[0-9]{3} +/dev/sdb" + named));
    EXPECT_THAT(lines[2],
                testing::MatchesRegex(
                    "/dev/sdc +native +/dev/sdb +yes +[0-9]+\\.[0-9]{3} +/dev/sdc" + named));
    EXPECT_THAT(lines[3],
                testing::MatchesRegex("/dev/mapper/mpatha +device-mapper +/dev/mapper/mpatha +no "
                                      "+0\\.[0-9]{3} +/dev/mapper/mpatha +not-asked +the volume "
                                      "manager is not asked about paths of device-mapper"));
}

TEST_F(ActiveOutput, StatusesTellWhetherPathsAreConfirmedOrNotAskedAbout)
{
    EXPECT_EQ(run({"/dev/sdc", "/dev/mapper/mpatha"}).status, 0);
    EXPECT_EQ(run({"/dev/emcpowera"}).status, 0);
    EXPECT_EQ(run({"--once", "/dev/sdc", "/dev/sdz"}).status, 64);
    EXPECT_EQ(run({"--once", "/dev/mapper/mpatha", "/dev/sdz"}).status, 64);
    EXPECT_EQ(run({"--once", "/dev/sdy", "/dev/sdz"}).status, 32);
}

TEST_F(ActiveOutput, StatusesTellWhetherPathsAreClaimed)
{
    EXPECT_EQ(run({"/dev/sdc", "x"}).status, 64);
    EXPECT_THAT(run({"-n", "-o", "NAME,OWNER,ACTIVE,CHANGED", "-r", "x"}),
                testing::AllOf(testing::Field(&Result::status, 32),
                               testing::Field(&Result::output, "x - - no\n")));
    EXPECT_EQ(run({"-n", "-o", "DISK,RESULT,REASON", "x"}).output,
              "- not-claimed no driver claims it\n");
    EXPECT_EQ(run({}).status, 2);
}

TEST_F(ActiveOutput, TheTimelineIsAColumnToo)
{
    EXPECT_THAT(run({"-n", "-o", "timeline", "/dev/sdc"}).output,
                testing::MatchesRegex("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc \\([.0-9]+ s, "
                                      "0\\); /usr/sbin/kodmpadm   getsubpaths  "
                                      "dmpnodename=arr0_17 \\([.0-9]+ s, 0\\)\n"));
}

TEST_F(ActiveOutput, JsonHasTheTimeAsANumberAndTheTimeline)
{
    const Json path = answer({"/dev/sdc"});
    EXPECT_TRUE(path["took"].is_number_float());
    ASSERT_EQ(path["timeline"].size(), 2U);
    EXPECT_EQ(path["timeline"][0]["command"], "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_TRUE(path["timeline"][0]["seconds"].is_number_float());
    EXPECT_EQ(path["timeline"][0]["result"], 0);
}

TEST_F(ActiveOutput, ADryRunRunsNothing)
{
    for (const char* form : {"-J", "-r"}) {
        const Result ended = run({"--dry-run", "--refresh", form, "/dev/sdc", "/dev/mapper/a"});
        EXPECT_EQ(ended.status, 0);
        EXPECT_THAT(ended.output, testing::HasSubstr("NODE"));
    }
    EXPECT_TRUE(log().empty());
}

TEST_F(ActiveOutput, ADryRunsCommandsMayBePastedIntoAShell)
{
    const std::vector<std::string> lines =
        splitLines(run({"--dry-run", "-n", "-o", "COMMAND", "/dev/sd$(x)"}).output);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "/usr/sbin/kodmpadm   getdmpnode  'nodename=sd$(x)'");
    EXPECT_EQ(splitLines(run({"--dry-run", "-n", "-r", "-o", "COMMAND", "/dev/sd$(x)"}).output)[1],
              R"(/usr/sbin/kodisk\x20\x20\x20scandisks\x20\x20'device=sd$(x)')");
    EXPECT_EQ(Json::parse(run({"--dry-run", "-J", "/dev/sd$(x)"}).output)["commands"][0]["command"],
              "/usr/sbin/kodmpadm   getdmpnode  nodename=sd$(x)");
}

TEST_F(ActiveOutput, ADryRunsJsonListsTheCommands)
{
    const Json document = Json::parse(run({"--dry-run", "-J", "/dev/sdc"}).output);
    ASSERT_EQ(document["commands"].size(), 3U);
    EXPECT_EQ(document["commands"][0]["command"], "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_EQ(document["commands"][2]["when"], "when the node was found");
}

TEST_F(ActiveOutput, TraceLinesGoToStandardErrorToo)
{
    EXPECT_THAT(run({"--trace=3", "/dev/sdc"}).errors,
                testing::HasSubstr(" 3 ExecuteCommand command: /usr/sbin/kodmpadm   getdmpnode"));
}

TEST_F(ActiveOutput, ATraceFileThatCannotBeWrittenStopsItBeforeAnythingRuns)
{
    EXPECT_EQ(run({"--trace-file", "/nowhere/trace", "/dev/sdc"}).status, 2);
    EXPECT_TRUE(log().empty());
}

/// Runs the command in a pseudo-terminal of its own and returns what it prints there.
class ActiveTerminal : public ActiveCommand {
protected:
    /// `before` stands before the command in its shell line.
    std::string shown(const std::vector<std::string>& arguments,
                      const std::string& before = "") const
    {
        std::string line = before;
        for (const std::string& word : active(arguments, "700"))
            line += "'" + word + "' ";
        return Process({"script", "-qec", line, "/dev/null"}).finish().output;
    }

    void delayLookups(int milliseconds) const
    {
        useFault({{"subcommand", "getdmpnode"}, {"delay_ms", milliseconds}});
    }
};

TEST_F(ActiveTerminal, ProgressIsShownAndErasedBeforeTheRows)
{
    useScenario("stale-repaired-by-waiting");
    const std::string text = shown({"-n", "-o", "active", "/dev/sdc"});
    EXPECT_THAT(text, testing::HasSubstr("/dev/sdc: attempt 1 of 4, next one in 5 s"));
    EXPECT_THAT(text, testing::EndsWith("\r\x1b[K/dev/sdb\r\n"));
}

TEST_F(ActiveTerminal, ManyPathsHaveABar)
{
    useScenario("stale-repaired-by-waiting");
    EXPECT_THAT(shown({"/dev/sdc", "/dev/sdb"}),
                testing::HasSubstr("[....................] 0 of 2, /dev/sdc: attempt 1 of 4"));
}

TEST_F(ActiveTerminal, ARowStandsBetweenTheProgressBeforeAndAfterIt)
{
    delayLookups(700);
    const std::string text = shown({"-r", "-n", "-o", "name,active", "/dev/sdc", "/dev/sdb"});
    EXPECT_THAT(text, testing::HasSubstr("\r\x1b[K/dev/sdc /dev/sdb\r\n"
                                         "\r[##########..........] 1 of 2, /dev/sdb: attempt 1"));
    EXPECT_THAT(text, testing::EndsWith("\r\x1b[K/dev/sdb /dev/sdb\r\n"));
}

TEST_F(ActiveTerminal, PathsThatAreStillReadAreCounted)
{
    EXPECT_EQ(shown({"-n", "-"}, "sleep 0.5 | "), "\r0 done\x1b[K\r\x1b[K");
}

TEST_F(ActiveTerminal, OfSeveralLookupsTheOneBegunFirstIsShown)
{
    Json state = scenario("healthy");
    state["faults"] = {{{"subcommand", "getdmpnode"}, {"call", 1}, {"delay_ms", 1000}},
                       {{"subcommand", "getdmpnode"}, {"call", 2}, {"delay_ms", 2600}}};
    write(state);
    const std::string text =
        shown({"-j2", "-"}, "{ echo /dev/sdc; sleep 0.4; echo /dev/sdb; sleep 0.6; } | ");
    EXPECT_THAT(text, testing::HasSubstr("\r0 done, /dev/sdc: attempt 1 of 4, running kodmpadm"));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("0 done, /dev/sdb")));
    EXPECT_THAT(text, testing::HasSubstr("\r1 done, /dev/sdb: attempt 1 of 4, running kodmpadm"));
}

TEST_F(ActiveTerminal, ARefreshPausesTenSeconds)
{
    useFault({{"subcommand", "getdmpnode"}, {"to", 2}, {"exit", 3}});
    EXPECT_THAT(shown({"--refresh", "/dev/sdc"}),
                testing::HasSubstr("/dev/sdc: attempt 1 of 4, next one in 10 s"));
}

TEST_F(ActiveTerminal, ThereIsProgressBesidesATraceFile)
{
    delayLookups(500);
    EXPECT_THAT(shown({"--trace", "--trace-file", folder() / "trace", "/dev/sdc"}),
                testing::HasSubstr("/dev/sdc: attempt 1 of 4"));
}

TEST_F(ActiveTerminal, ThereIsNoneWhenItIsNotWanted)
{
    useScenario("stale-repaired-by-waiting");
    EXPECT_EQ(shown({"--no-progress", "-n", "-o", "active", "/dev/sdc"}), "/dev/sdb\r\n");
}

TEST_F(ActiveTerminal, ThereIsNoneAmongTraceLines)
{
    useScenario("stale-repaired-by-waiting");
    EXPECT_THAT(shown({"--trace", "/dev/sdc"}), testing::Not(testing::HasSubstr("attempt")));
}

TEST_F(ActiveOutput, WithoutATerminalThereIsNoProgress)
{
    useScenario("stale-repaired-by-waiting");
    const Result ended = Process(active({"/dev/sdc"}, "700")).finish();
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(sleeps().size(), 2U);
}

} // namespace
