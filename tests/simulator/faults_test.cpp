#include "simulated_tools.h"

#include <chrono>
#include <csignal>

using testing::ElementsAre;

namespace {

class Faults : public SimulatedTools {
protected:
    /// The statuses of the first six calls when `calls` selects those that end with status 9.
    std::vector<int> statusesWhen(Json calls) const
    {
        calls["subcommand"] = "scandisks";
        calls["exit"] = 9;
        useFault(calls);
        std::vector<int> statuses(6);
        for (int& status : statuses)
            status = kodisk({"scandisks"}).status;
        return statuses;
    }
};

TEST_F(Faults, StrikeTheCallsThatTheyName)
{
    EXPECT_THAT(statusesWhen(Json::object()), ElementsAre(9, 9, 9, 9, 9, 9));
    EXPECT_THAT(statusesWhen({{"call", 2}}), ElementsAre(0, 9, 0, 0, 0, 0));
    EXPECT_THAT(statusesWhen({{"from", 3}}), ElementsAre(0, 0, 9, 9, 9, 9));
    EXPECT_THAT(statusesWhen({{"to", 3}}), ElementsAre(9, 9, 9, 0, 0, 0));
    EXPECT_THAT(statusesWhen({{"from", 2}, {"to", 4}}), ElementsAre(0, 9, 9, 9, 0, 0));
    EXPECT_THAT(statusesWhen({{"every", 2}}), ElementsAre(0, 9, 0, 9, 0, 9));
    EXPECT_THAT(statusesWhen({{"every", 2}, {"from", 3}}), ElementsAre(0, 0, 0, 9, 0, 9));
}

TEST_F(Faults, StrikeTheirOwnSubcommandOnly)
{
    useFault({{"subcommand", "scandisks"}, {"call", 1}, {"exit", 9}});
    EXPECT_EQ(nodeOf("sdc").status, 0);
    EXPECT_EQ(kodisk({"scandisks"}).status, 9);
}

TEST_F(Faults, TheFirstOneThatFitsCounts)
{
    Json state = scenario("healthy");
    state["faults"] = {{{"subcommand", "rm"}, {"exit", 1}},
                       {{"subcommand", "scandisks"}, {"call", 2}, {"exit", 2}},
                       {{"subcommand", "scandisks"}, {"exit", 3}}};
    write(state);
    EXPECT_EQ(kodisk({"scandisks"}).status, 3);
    EXPECT_EQ(kodisk({"scandisks"}).status, 2);
}

TEST_F(Faults, ACallThatFailsDoesNothing)
{
    useFault({{"subcommand", "rm"}, {"exit", 3}});
    EXPECT_EQ(kodisk({"rm", "arr0_17"}).status, 3);
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Faults, ACallCanClaimSuccessAndDoNothing)
{
    useFault({{"subcommand", "rm"}, {"exit", 0}});
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Succeeds());
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Faults, ALateFailureComesAfterTheWorkAndTheOutput)
{
    useFault({{"subcommand", "getdmpnode"}, {"exit", 3}, {"late", true}});
    const Result call = nodeOf("sdc");
    EXPECT_EQ(call.status, 3);
    EXPECT_EQ(call.output, healthyNode);
    useFault({{"subcommand", "rm"}, {"exit", 3}, {"late", true}});
    EXPECT_EQ(kodisk({"rm", "arr0_17"}).status, 3);
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
}

TEST_F(Faults, ACallDiesByEachSignalThatEndsAProcess)
{
    const std::pair<const char*, int> signals[] = {
        {"ABRT", SIGABRT}, {"BUS", SIGBUS},   {"FPE", SIGFPE},   {"HUP", SIGHUP},
        {"ILL", SIGILL},   {"INT", SIGINT},   {"KILL", SIGKILL}, {"PIPE", SIGPIPE},
        {"QUIT", SIGQUIT}, {"SEGV", SIGSEGV}, {"TERM", SIGTERM}};
    for (const auto& [name, number] : signals) {
        useFault({{"subcommand", "getdmpnode"}, {"signal", name}});
        const Result call = nodeOf("sdc");
        EXPECT_THAT(call, DiesBy(number));
        EXPECT_EQ(call.output, "");
    }
}

TEST_F(Faults, ACallDiesThoughItsCallerBlocksAndIgnoresTheSignal)
{
    useFault({{"subcommand", "scandisks"}, {"signal", "TERM"}});
    for (const char* option : {"--block-signal=TERM", "--ignore-signal=TERM"})
        EXPECT_THAT(
            start({"/usr/bin/env", option, SIMULATOR_TOOLS "/kodisk", "scandisks"}).finish(),
            DiesBy(SIGTERM));
}

TEST_F(Faults, ADeathLeavesNoCoreFile)
{
    useFault({{"subcommand", "scandisks"}, {"signal", "SEGV"}});
    const std::string script = "cd \"$1\" && ulimit -c unlimited && \"$0\" scandisks; exit 0";
    const std::string errors =
        start({"/bin/bash", "-c", script, SIMULATOR_TOOLS "/kodisk", folder()}).finish().errors;
    EXPECT_THAT(errors, testing::HasSubstr("Segmentation fault"));
    EXPECT_THAT(errors, testing::Not(testing::HasSubstr("core dumped")));
}

TEST_F(Faults, ALateDeathLeavesAPartOfTheOutput)
{
    useScenario("fault-late-signal");
    const Result call = nodeOf("sdc");
    EXPECT_THAT(call, DiesBy(SIGKILL));
    EXPECT_EQ(call.output, std::string(healthyNode).substr(0, 50));
}

TEST_F(Faults, AHangingCallPrintsNothingAndDoesNothing)
{
    useFault({{"subcommand", "rm"}, {"hang", true}});
    EXPECT_THAT(limited(tool("kodisk", {"rm", "arr0_17"})), Fails(limitPassed, ""));
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Faults, ALateHangComesAfterTheOutputAndHoldsNobodyUp)
{
    useFault({{"subcommand", "getdmpnode"}, {"call", 1}, {"hang", true}, {"late", true}});
    Process call = start(tool("kodmpadm", {"getdmpnode", "nodename=sdc"}));
    std::string output;
    for (int line = 0; line < 3; ++line)
        output += call.receiveLine();
    EXPECT_EQ(output, healthyNode);
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Faults, ALateHangHasNoEnd)
{
    useFault({{"subcommand", "rm"}, {"hang", true}, {"late", true}});
    EXPECT_EQ(limited(tool("kodisk", {"rm", "arr0_17"})).status, limitPassed);
}

TEST_F(Faults, ADelayedCallTakesItsTimeAndThenAnswers)
{
    useFault({{"subcommand", "getdmpnode"}, {"delay_ms", 150}});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
}

TEST_F(Faults, AMistakeIsNamed)
{
    const std::pair<Json, const char*> mistakes[] = {
        {{{"subcommand", "x"}}, "faults[0].subcommand is no subcommand"},
        {{{"exit", 1}}, "faults[0].subcommand is missing"},
        {{{"subcommand", "rm"}, {"exits", 1}}, "faults[0].exits is no field"},
        {{{"subcommand", "rm"}, {"exit", 256}}, "exit is not a whole number from 0 to 255"},
        {{{"subcommand", "rm"}, {"exit", 1.5}}, "exit is not a whole number from 0 to 255"},
        {{{"subcommand", "rm"}, {"signal", "CHLD"}}, "signal is no signal that ends a process"},
        {{{"subcommand", "rm"}, {"exit", 1}, {"hang", true}}, "a call ends in one way only"},
        {{{"subcommand", "rm"}, {"exit", 1}, {"signal", "KILL"}}, "a call ends in one way only"},
        {{{"subcommand", "rm"}, {"signal", "KILL"}, {"hang", true}}, "a call ends in one way only"},
        {{{"subcommand", "rm"}, {"late", true}}, "late needs exit, signal or hang"},
        {{{"subcommand", "rm"}, {"call", 0}}, "call is not a whole number from 1"},
        {{{"subcommand", "rm"}, {"from", 0}}, "from is not a whole number from 1"},
        {{{"subcommand", "rm"}, {"every", 0}}, "every is not a whole number from 1"},
        {{{"subcommand", "rm"}, {"call", 1}, {"to", 2}}, "call stands alone"},
        {{{"subcommand", "rm"}, {"call", 1}, {"from", 2}}, "call stands alone"},
        {{{"subcommand", "rm"}, {"call", 1}, {"every", 2}}, "call stands alone"},
    };
    for (const auto& [fault, message] : mistakes) {
        useFault(fault);
        EXPECT_THAT(nodeOf("sdc"), Fails(78, message));
    }
}

} // namespace
