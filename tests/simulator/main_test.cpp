// Names that try to steer a terminal, through every message; output that cannot be written.
#include "simulated_tools.h"

#include "tests/support/harmless_text.h"

namespace {

const std::string hostile = "\x1b[2J\x1b]0;t\a\r\n\x7f\u009b\u0085\u2028\u202e\u200b\ufeff\u00ad";
const std::string escaped =
    R"(\x1b[2J\x1b]0;t\x07\x0d\x0a\x7f\xc2\x9b\xc2\x85\xe2\x80\xa8\xe2\x80\xae\xe2\x80\x8b)"
    R"(\xef\xbb\xbf\xc2\xad)";

class Main : public SimulatedTools {
protected:
    Main() { useScenario("healthy"); }

    /// Expects that the call prints exactly that many harmless lines, the first one with the name.
    static void expectHarmless(const Result& call, std::size_t lines = 1)
    {
        EXPECT_EQ(call.output, "");
        EXPECT_TRUE(isHarmlessLines(call.errors, lines)) << call.errors;
        EXPECT_THAT(call.errors.substr(0, call.errors.find('\n')), testing::HasSubstr(escaped));
    }
};

TEST_F(Main, NoArgumentSteersTheTerminal)
{
    expectHarmless(nodeOf(hostile));
    expectHarmless(pathsOf(hostile));
    expectHarmless(kodisk({"rm", hostile}));
    expectHarmless(kodisk({hostile}), 3);
    expectHarmless(kodisk({"rm", "x", hostile}), 3);
    expectHarmless(kodisk({"scandisks", hostile}), 3);
    write(Json{{"replay", Json::array()}});
    expectHarmless(nodeOf(hostile));
}

TEST_F(Main, NoNameInAStateSteersTheTerminal)
{
    const std::string word = "\x1b[2J\u009b\u202e";
    const Json node{{"name", word}};
    const Json states[] = {
        {{word, 1}},
        {{"arrays", {{{"name", "a"}, {word, 1}}}}},
        {{"arrays", {{{"name", "a"}, {"nodes", {node, node}}}}}},
        {{"calls", {{word, -1}}}},
        {{"replay", word}},
    };
    for (const Json& state : states) {
        write(state);
        const Result call = nodeOf("sdc");
        EXPECT_THAT(call, Fails(78, R"(\x1b[2J\xc2\x9b\xe2\x80\xae)"));
        EXPECT_TRUE(isHarmlessLines(call.errors, 1)) << call.errors;
    }
    write("{\"a\": " + hostile);
    EXPECT_TRUE(isHarmlessLines(nodeOf("sdc").errors, 1));
}

TEST_F(Main, TheNameOfTheStateDoesNotSteerTheTerminal)
{
    expectHarmless(start({"/usr/bin/env", "KOVM_SIMULATOR_STATE=" + statePath() + hostile,
                          SIMULATOR_TOOLS "/kodisk", "scandisks"})
                       .finish());
}

TEST_F(Main, TheNameThatTheToolIsCalledByDoesNotSteerTheTerminal)
{
    expectHarmless(start({"/bin/bash", "-c", "exec -a \"$1\" \"$2\" scandisks", "bash", hostile,
                          SIMULATOR_TOOLS "/kodisk"})
                       .finish());
    EXPECT_THAT(log(), testing::ElementsAre(testing::EndsWith("] " + escaped + " \"scandisks\"")));
}

TEST_F(Main, OutputThatCannotBeWrittenIsAnError)
{
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    Setting setting;
    setting.output = full.number();
    setting.environment = {"KOVM_SIMULATOR_STATE=" + statePath()};
    EXPECT_THAT(Process(tool("kodmpadm", {"getdmpnode", "nodename=sdc"}), setting).finish(),
                Fails(78, "kodmpadm: simulator: cannot write to descriptor 1: No space left"));
}

TEST_F(Main, ToolsAndTheirStandardErrorPrintWhatTheyAreToPrint)
{
    useFault({{"subcommand", "getdmpnode"}, {"note", hostile}, {"stderr", hostile}});
    const Result call = nodeOf("sdc");
    EXPECT_EQ(call.output, hostile + "\n" + healthyNode);
    EXPECT_EQ(call.errors, hostile + "\n");
}

} // namespace
