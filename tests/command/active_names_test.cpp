#include "active_command.h"

namespace {

/// Names that a shell, a format or a table would trip over.
const std::string names[] = {
    "; touch HACKED",
    "$(touch HACKED)",
    "`touch HACKED`",
    "| touch HACKED",
    "&& touch HACKED &",
    "> HACKED",
    "a b  c",
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
    "-rf /",
    "\x1b[2J",
    "\xff\xfe",
    "' and error no '0",
    "a=b,c=d",
    "#",
    "!!",
    "{a,b}",
};

class ActiveNames : public ActiveCommand {
protected:
    /// Looks the name up and expects it back, and calls of nothing but the tools, for this name.
    void expectUntouched(const std::string& name) const
    {
        std::filesystem::remove(logPath());
        const std::string path = "/dev/sd" + name;
        const Result ended = run({"-J", path});
        EXPECT_EQ(ended.status, 0);
        const Json document = Json::parse(ended.output);
        EXPECT_EQ(document["paths"][0]["changed"], false);
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
