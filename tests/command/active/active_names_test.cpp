#include "active_command.h"

namespace {

using namespace std::string_literals;

/// Names that are special to a shell, a format or a table.
const std::string names[] = {
    ";touch\tHACKED",
    "$(touch\tHACKED)",
    "`touch\tHACKED`",
    "|touch\tHACKED",
    "&&touch\tHACKED&",
    ">HACKED",
    "a\nb",
    "\ttab",
    "'quote'",
    "\"double\"",
    "%s%s%n",
    "*",
    "~root",
    "$HOME",
    "\\",
    "--help",
    "-rf/",
    "\x1b[2J",
    "\xff\xfe",
    "'\tand\terror\tno\t'0",
    "a=b",
    "#",
    "!!",
    "{a}",
};

/// Names that the tools would take for several arguments or disks.
const std::string misreadNames[] = {
    "c force=yes", "c ", " c", "; touch HACKED", "a b  c", "c,sdd", "a=b,c=d", "{a,b}",
};

class ActiveNames : public ActiveCommand {
protected:
    /// Looks the name up and expects it back, and calls of nothing but the tools, for this name.
    void expectUntouched(const std::string& name) const
    {
        std::filesystem::remove(logPath());
        const std::string path = "/dev/sd" + name;
        const Result ended = run({"-J", path});
        EXPECT_EQ(ended.status, 32);
        const Json document = Json::parse(ended.output);
        EXPECT_EQ(document["paths"][0]["changed"], false);
        EXPECT_EQ(document["paths"][0]["result"], "not-found");
        EXPECT_EQ(document["paths"][0]["timeline"].size(), 12U);
        const std::vector<std::string> made = calls();
        ASSERT_EQ(made.size(), 8U);
        for (std::size_t i = 0; i < made.size(); i += 2) {
            EXPECT_EQ(made[i].rfind("kodmpadm \"getdmpnode\" \"nodename=sd", 0), 0U) << made[i];
            EXPECT_EQ(made[i + 1].rfind("kodisk \"scandisks\" \"device=sd", 0), 0U) << made[i + 1];
        }
    }
};

TEST_F(ActiveNames, NothingButTheToolsIsRun)
{
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        expectUntouched(name);
    }
    EXPECT_FALSE(std::filesystem::exists("HACKED"));
}

TEST_F(ActiveNames, AMisreadNameAmongTheArgumentsStopsItBeforeAnythingRuns)
{
    for (const std::string& name : misreadNames) {
        for (const char* option : {"-J", "--refresh", "--dry-run"}) {
            const Result ended = run({option, "/dev/sdb", "/dev/sd" + name});
            EXPECT_EQ(ended.status, 2) << name;
            EXPECT_EQ(ended.output, "");
            EXPECT_THAT(ended.errors, testing::StartsWith("dmpclaim: '/dev/sd" + name +
                                                          "' cannot be looked up: it holds a "));
        }
    }
    EXPECT_THAT(log(), testing::IsEmpty());
}

TEST_F(ActiveNames, AMisreadNameOnStandardInputHasAWarningAndTheOthersTheirAnswers)
{
    Process process(active({"-j3", "-r", "-n", "-o", "active", "-"}));
    const Result ended =
        process.finish("/dev/sdb\n/dev/sdc force=yes\n/dev/sdc,sdd\n/dev/sd\0c\n/dev/sdc\n"s);
    EXPECT_EQ(ended.output, "/dev/sdb\n-\n-\n-\n/dev/sdb\n");
    EXPECT_EQ(ended.errors,
              "dmpclaim: /dev/sdc force=yes: not looked up: it holds a space, which separates the "
              "arguments of the volume manager's tools\n"
              "dmpclaim: /dev/sdc,sdd: not looked up: it holds a comma, which separates the disks "
              "that the volume manager's tools scan\n"
              "dmpclaim: /dev/sd\\x00c: not looked up: it holds a NUL byte, which ends the "
              "arguments of the volume manager's tools\n");
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(calls(), testing::Each(testing::Not(testing::AnyOf(testing::HasSubstr("force"),
                                                                   testing::HasSubstr("sdd")))));
}

TEST_F(ActiveNames, AnActivePathThatLeavesDevHasAWarning)
{
    Json state = scenario("healthy");
    state["arrays"][0]["nodes"][0]["paths"][0]["name"] = "../etc/shadow";
    write(state);
    const Result ended = run({"-J", "/dev/sdc"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "dmpclaim: /dev/sdc: do not use the active path '/dev/../etc/shadow': "
                            "it leaves /dev\n");
    const Json path = Json::parse(ended.output)["paths"][0];
    EXPECT_EQ(path["active"], "/dev/../etc/shadow");
    EXPECT_EQ(path["warning"], "do not use the active path '/dev/../etc/shadow': it leaves /dev");
}

TEST_F(ActiveNames, AnArgumentReachesTheToolByteForByte)
{
    run({"/dev/sd'\"\\$(x)\n%s"});
    EXPECT_EQ(calls().front(), R"(kodmpadm "getdmpnode" "nodename=sd'\"\\$(x)\x0a%s")");
}

TEST_F(ActiveNames, ALongNameIsLookedUpInFull)
{
    const std::string name(65536, 'x');
    expectUntouched(name);
    EXPECT_EQ(calls().front(), "kodmpadm \"getdmpnode\" \"nodename=sd" + name + "\"");
}

} // namespace
