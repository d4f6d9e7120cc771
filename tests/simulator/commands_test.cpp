#include "simulated_tools.h"

namespace {

class Commands : public SimulatedTools {
protected:
    Commands() { useScenario("healthy"); }
};

struct WrongCall {
    const char* tool;
    std::vector<std::string> arguments;
    const char* message;
};

TEST_F(Commands, ACallOfTheWrongFormSaysSo)
{
    const WrongCall calls[] = {
        {"kodmpadm",
         {},
         "kodmpadm: no subcommand is given\nusage: kodmpadm getdmpnode nodename=DISK"},
        {"kodisk", {}, "kodisk: no subcommand is given\nusage: kodisk rm NODE"},
        {"kodmpadm", {"getnode"}, "unknown subcommand \"getnode\""},
        {"kodmpadm", {"rm", "arr0_17"}, "unknown subcommand \"rm\""},
        {"kodisk", {"getdmpnode", "nodename=sdc"}, "unknown subcommand \"getdmpnode\""},
        {"kodmpadm", {"getdmpnode"}, "nodename= is missing"},
        {"kodmpadm", {"getdmpnode", "sdc"}, "expected nodename=, got \"sdc\""},
        {"kodmpadm",
         {"getdmpnode", "dmpnodename=sdc"},
         "expected nodename=, got \"dmpnodename=sdc\""},
        {"kodmpadm", {"getdmpnode", "nodename=sdc", "x"}, "unexpected argument \"x\""},
        {"kodmpadm", {"getsubpaths", "nodename=x"}, "expected dmpnodename=, got \"nodename=x\""},
        {"kodisk", {"rm"}, "no node is named"},
        {"kodisk", {"rm", ""}, "no node is named"},
        {"kodisk", {"rm", "arr0_17", "arr0_18"}, "unexpected argument \"arr0_18\""},
        {"kodisk", {"scandisks", "sdc"}, "expected device=, got \"sdc\""},
    };
    for (const WrongCall& call : calls)
        EXPECT_THAT(start(tool(call.tool, call.arguments)).finish(), Fails(2, call.message));
    EXPECT_THAT(pathsOf("arr0_17"), testing::Field(&Result::status, 0));
}

TEST_F(Commands, TheNodeOfADiskIsFound)
{
    EXPECT_THAT(nodeOf("sdb"), Succeeds(healthyNode));
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Commands, AnUnknownDiskIsAFailure)
{
    for (const char* disk : {"sdd", "sd", "sdcc", "arr0_17", ""})
        EXPECT_THAT(nodeOf(disk),
                    Fails(1, "ERROR disk \"" + std::string(disk) + "\" is not under"));
}

TEST_F(Commands, AnUnknownDiskCanBeAnEmptyTable)
{
    useScenario("unknown-disk");
    EXPECT_THAT(nodeOf("sdd"), Succeeds("NAME    STATE    GROUP    PATHS\n"
                                        "===============================\n"));
    EXPECT_THAT(nodeOf("sdc"), Succeeds(healthyNode));
}

TEST_F(Commands, ThePathsOfANodeAreListed)
{
    EXPECT_THAT(pathsOf("arr0_17"), Succeeds("NAME    STATE         TYPE         CTLR\n"
                                             "=======================================\n"
                                             "sdb     ENABLED(A)    PRIMARY      c1\n"
                                             "sdc     ENABLED       SECONDARY    c2\n"));
}

TEST_F(Commands, AnUnknownNodeIsAFailure)
{
    for (const char* node : {"arr0_1", "arr0_177", "sdc", ""})
        EXPECT_THAT(pathsOf(node),
                    Fails(1, "ERROR node \"" + std::string(node) + "\" is not under"));
}

TEST_F(Commands, CallsAreCountedBySubcommand)
{
    nodeOf("sdb");
    nodeOf("sdx");
    kodisk({"rm"});
    kodisk({"other"});
    EXPECT_EQ(state()["calls"], Json({{"getdmpnode", 2}, {"rm", 1}}));
}

} // namespace
