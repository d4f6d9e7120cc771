#include "simulated_tools.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::MatchesRegex;

namespace {

using CallLog = SimulatedTools;

TEST_F(CallLog, ALineHasTimeProcessToolAndArguments)
{
    useScenario("healthy");
    const std::string script = "echo $$; exec \"$0\" scandisks";
    const std::string output =
        start({"/bin/sh", "-c", script, SIMULATOR_TOOLS "/kodisk"}).finish().output;
    const std::string id = output.substr(0, output.find('\n'));
    EXPECT_THAT(log(), ElementsAre(MatchesRegex(
                           "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z \\[" +
                           id + "\\] kodisk \"scandisks\"")));
}

TEST_F(CallLog, EveryCallIsLoggedInItsOrder)
{
    useScenario("healthy");
    kodisk({"scandisks"});
    kodisk({"rm", "arr0_17"});
    kodmpadm({});
    EXPECT_THAT(log(),
                ElementsAre(EndsWith("] kodisk \"scandisks\""),
                            EndsWith("] kodisk \"rm\" \"arr0_17\""), EndsWith("] kodmpadm")));
}

TEST_F(CallLog, ArgumentsAreQuotedSoThatTheyCanBeToldApart)
{
    useScenario("healthy");
    kodisk({"rm", "a b", ""});
    kodisk({"rm", "a\" \"b\\"});
    kodisk({"rm", "\n\x1f\x7f\u00e9"});
    kodisk({"rm", "\u009b\u2028\u202e\xff\\x1b"});
    EXPECT_THAT(log(),
                ElementsAre(EndsWith(R"( "rm" "a b" "")"), EndsWith(R"( "rm" "a\" \"b\\")"),
                            EndsWith(R"( "rm" "\x0a\x1f\x7fé")"),
                            EndsWith(R"( "rm" "\xc2\x9b\xe2\x80\xa8\xe2\x80\xae\xff\\x1b")")));
}

TEST_F(CallLog, AnArgumentOf64KibIsLoggedWhole)
{
    useScenario("healthy");
    const std::string name(65536, 'x');
    kodisk({"rm", name});
    EXPECT_THAT(log(), ElementsAre(EndsWith("\"" + name + "\"")));
}

TEST_F(CallLog, ACallThatFindsNoStateIsLoggedToo)
{
    nodeOf("sdc");
    EXPECT_EQ(log().size(), 1U);
}

} // namespace
