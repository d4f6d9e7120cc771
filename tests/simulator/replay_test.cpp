#include <csignal>
#include <fstream>

#include "simulated_tools.h"

namespace {

class Replay : public SimulatedTools {
protected:
    static Json record(const std::string& command, int status,
                       const std::vector<std::string>& output)
    {
        return {{"command", command}, {"status", status}, {"output", output}};
    }

    void use(const std::vector<Json>& records) const { write(Json{{"replay", records}}); }
};

TEST_F(Replay, ARecordedCallIsAnsweredWithItsLinesAndStatus)
{
    use({record("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc", 3, {"a  b", "", "\tc"})});
    const Result call = nodeOf("sdc");
    EXPECT_EQ(call.status, 3);
    EXPECT_EQ(call.output, "a  b\n\n\tc\n");
    EXPECT_EQ(call.errors, "");
}

TEST_F(Replay, TheArgumentsMustBeTheSame)
{
    use({record("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc", 0, {}),
         record("kodisk rm a b", 0, {})});
    EXPECT_THAT(nodeOf("sdc"), Succeeds());
    EXPECT_THAT(kodisk({"rm", "a", "b"}), Succeeds());
    const std::string expected = "unexpected command, not among the recorded: ";
    EXPECT_THAT(nodeOf("sdd"), Fails(70, expected + "kodmpadm getdmpnode nodename=sdd\n"));
    EXPECT_THAT(kodmpadm({"getdmpnode"}), Fails(70, expected + "kodmpadm getdmpnode\n"));
    EXPECT_THAT(kodmpadm({"getdmpnode", "nodename=sdc", ""}), Fails(70, expected));
    EXPECT_THAT(kodisk({"getdmpnode", "nodename=sdc"}), Fails(70, expected));
    EXPECT_THAT(kodisk({"rm", "a b"}), Fails(70, expected));
}

TEST_F(Replay, ARecordedCommandLineIsSplitAtSpacesOnly)
{
    use({record("  /usr/sbin/kodisk   rm a\nb\t/c  ", 0, {}), record("", 0, {})});
    EXPECT_THAT(kodisk({"rm", "a\nb\t/c"}), Succeeds());
    EXPECT_THAT(kodisk({"rm", "a", "b", "/c"}), Fails(70, "not among the recorded"));
}

TEST_F(Replay, SeveralAnswersAreGivenInTurnAndTheLastForGood)
{
    const std::string command = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
    use({record(command, 1, {"first"}), record("kodisk scandisks", 0, {"other"}),
         record(command, 0, {"second"})});
    EXPECT_EQ(nodeOf("sdc").output, "first\n");
    EXPECT_EQ(kodisk({"scandisks"}).output, "other\n");
    EXPECT_EQ(nodeOf("sdc").output, "second\n");
    EXPECT_EQ(nodeOf("sdc").output, "second\n");
    EXPECT_EQ(state()["replayed"],
              Json({{"kodisk scandisks", 1}, {"kodmpadm getdmpnode nodename=sdc", 3}}));
}

TEST_F(Replay, ARecordedDeathIsADeath)
{
    use({record("kodisk scandisks", 1000 + SIGKILL, {"half a"})});
    const Result call = kodisk({"scandisks"});
    EXPECT_THAT(call, DiesBy(SIGKILL));
    EXPECT_EQ(call.output, "half a\n");
}

TEST_F(Replay, ARecordedTimeoutHangsAfterItsOutput)
{
    use({record("kodisk scandisks", 1100, {"before"})});
    EXPECT_EQ(start(tool("kodisk", {"scandisks"})).receiveLine(), "before\n");
    EXPECT_EQ(limited(tool("kodisk", {"scandisks"})).status, limitPassed);
}

TEST_F(Replay, WhatCannotBeRepeatedIsSaid)
{
    for (const int status : {256, 999, 1000, 1000 + SIGCHLD, 1000 + SIGSTOP, 1099, 1101, 1102}) {
        use({record("kodisk scandisks", status, {})});
        EXPECT_THAT(kodisk({"scandisks"}),
                    Fails(70, "status " + std::to_string(status) + " cannot be replayed"));
    }
}

TEST_F(Replay, ARecordingCanStandInAFileOfItsOwn)
{
    const std::string recording = R"({"version": "1.0", "commands": [
        {"command": "kodisk scandisks", "status": 4, "output": ["x"], "took": 0.2}]})";
    std::ofstream(folder() / "case.json") << recording;
    write(Json{{"replay", "case.json"}});
    EXPECT_EQ(kodisk({"scandisks"}).status, 4);
    EXPECT_EQ(textOf(folder() / "case.json"), recording);
}

TEST_F(Replay, ARecordingIsLookedForInTheFolderOfTheStateOnly)
{
    create_directory(folder() / "inner");
    const std::string inner = (folder() / "inner" / "state.json").string();
    std::ofstream(folder() / "case.json") << Json{{"commands", Json::array()}};
    const std::string names[] = {"../case.json", "../inner/case.json", "./case.json",
                                 (folder() / "case.json").string()};
    for (const std::string& name : names) {
        std::ofstream(inner) << Json{{"replay", name}};
        EXPECT_THAT(start({"/usr/bin/env", "KOVM_SIMULATOR_STATE=" + inner,
                           SIMULATOR_TOOLS "/kodisk", "scandisks"})
                        .finish(),
                    Fails(78, inner + ": replay is not the name of a file in the same folder"));
    }
}

TEST_F(Replay, TheNameOfAFolderIsNoRecording)
{
    for (const char* name : {"", ".", ".."}) {
        write(Json{{"replay", name}});
        EXPECT_THAT(nodeOf("sdc"), Fails(78, "it is no regular file"));
    }
}

TEST_F(Replay, AStateWithoutAFolderInItsPathFindsItsRecording)
{
    std::ofstream(folder() / "case.json")
        << Json{{"commands", {record("kodisk scandisks", 4, {})}}};
    write(Json{{"replay", "case.json"}});
    const std::string script = "cd \"$1\" && KOVM_SIMULATOR_STATE=state.json exec \"$2\" scandisks";
    EXPECT_EQ(
        start({"/bin/sh", "-c", script, "sh", folder(), SIMULATOR_TOOLS "/kodisk"}).finish().status,
        4);
}

TEST_F(Replay, ADamagedRecordingIsNamedWithItsPlace)
{
    const std::pair<const char*, const char*> mistakes[] = {
        {R"({"replay": 3})", "replay is not an array"},
        {R"({"replay": [3]})", "replay[0] is not an object"},
        {R"({"replay": [{"status": 0}]})", "replay[0].command is missing"},
        {R"({"replay": [{"command": "x"}]})", "replay[0].status is missing"},
        {R"({"replay": [{"command": "x", "status": -1}]})", "[0].status is not a whole number"},
        {R"({"replay": [{"command": "x", "status": 0}]})", "replay[0].output is not an array"},
        {R"({"replay": [{"command": "x", "status": 0, "output": "a"}]})", "is not an array"},
        {R"({"replay": [{"command": "x", "status": 0, "output": [1]}]})", "else than lines"},
        {R"({"replay": "none.json"})", "none.json: No such file"},
        {R"({"replay": "case.json"})", "case.json.commands is missing"},
    };
    std::ofstream(folder() / "case.json") << "{}";
    for (const auto& [state, message] : mistakes) {
        write(std::string(state));
        EXPECT_THAT(nodeOf("sdc"), Fails(78, message));
    }
}

TEST_F(Replay, FaultsStrikeRecordedCallsToo)
{
    write(
        Json{{"replay", std::vector{record("kodisk scandisks", 0, {"x"})}},
             {"faults", std::vector{Json{{"subcommand", "scandisks"}, {"call", 2}, {"exit", 9}}}}});
    EXPECT_EQ(kodisk({"scandisks"}).status, 0);
    EXPECT_EQ(kodisk({"scandisks"}).status, 9);
}

} // namespace
