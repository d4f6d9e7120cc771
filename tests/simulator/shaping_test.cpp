#include "simulated_tools.h"

using testing::AllOf;
using testing::Field;

namespace {

class Shaping : public SimulatedTools {
protected:
    /// What getsubpaths prints in the scenario `healthy` with this fault.
    Result pathsWith(Json fault) const
    {
        fault["subcommand"] = "getsubpaths";
        useFault(fault);
        return pathsOf("arr0_17");
    }
};

constexpr char header[] = "NAME    STATE         TYPE         CTLR\n";
constexpr char rule[] = "=======================================\n";
constexpr char first[] = "sdb     ENABLED(A)    PRIMARY      c1\n";
constexpr char second[] = "sdc     ENABLED       SECONDARY    c2\n";

std::string text(std::initializer_list<std::string> lines)
{
    std::string joined;
    for (const std::string& line : lines)
        joined += line;
    return joined;
}

TEST_F(Shaping, WithoutAFaultTheTableIsWhole)
{
    EXPECT_THAT(pathsWith(Json::object()), Succeeds(text({header, rule, first, second})));
}

TEST_F(Shaping, ANoteStandsBeforeTheHeader)
{
    EXPECT_THAT(pathsWith({{"note", "a note"}}),
                Succeeds(text({"a note\n", header, rule, first, second})));
}

TEST_F(Shaping, TheHeaderCanBeMissing)
{
    EXPECT_THAT(pathsWith({{"no_header", true}}), Succeeds(text({rule, first, second})));
}

TEST_F(Shaping, ARowCanStandInPlaceOfTheRule)
{
    EXPECT_THAT(pathsWith({{"no_rule", true}}), Succeeds(text({header, first, second})));
}

TEST_F(Shaping, BlankLinesStandBeforeTheRows)
{
    EXPECT_THAT(pathsWith({{"blank_lines", true}}),
                Succeeds(text({header, rule, "\n", first, "\n", second})));
}

TEST_F(Shaping, LinesCanEndWithACarriageReturn)
{
    EXPECT_EQ(pathsWith({{"crlf", true}, {"cut", 90}}).output,
              "NAME    STATE         TYPE         CTLR\r\n"
              "=======================================\r\n"
              "sdb     ");
}

TEST_F(Shaping, ColumnsCanBeSetApartByAnything)
{
    EXPECT_THAT(pathsWith({{"separator", "\t"}}),
                Succeeds(text({"NAME\tSTATE\tTYPE\tCTLR\n", rule, "sdb\tENABLED(A)\tPRIMARY\tc1\n",
                               "sdc\tENABLED\tSECONDARY\tc2\n"})));
}

TEST_F(Shaping, ColumnsAreSetApartAtTheBeginningOfALineToo)
{
    const Json record{{"command", "kodisk scandisks"}, {"status", 0}, {"output", {" a  b", ""}}};
    write(Json{{"replay", {record}},
               {"faults", {{{"subcommand", "scandisks"}, {"separator", "|"}}}}});
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds("|a|b\n\n"));
}

TEST_F(Shaping, WhatIsFalseSpoilsNothing)
{
    EXPECT_THAT(pathsWith({{"no_header", false}, {"crlf", false}}),
                Succeeds(text({header, rule, first, second})));
}

TEST_F(Shaping, TheOutputCanBeCutShort)
{
    const std::string whole = text({header, rule, first, second});
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{85},
                                     whole.size() - 1, whole.size(), whole.size() + 1})
        EXPECT_THAT(pathsWith({{"cut", length}}), Succeeds(whole.substr(0, length)));
}

TEST_F(Shaping, ShapesGoTogether)
{
    EXPECT_THAT(
        pathsWith(
            {{"note", "a note"}, {"no_header", true}, {"no_rule", true}, {"blank_lines", true}}),
        Succeeds(text({"a note\n", "\n", first, "\n", second})));
}

TEST_F(Shaping, ACallWithoutATableHasNothingToSpoil)
{
    useFault({{"subcommand", "rm"}, {"no_header", true}, {"no_rule", true}, {"blank_lines", true}});
    EXPECT_THAT(kodisk({"rm", "arr0_17"}), Succeeds());
}

TEST_F(Shaping, NoiseGoesToStandardErrorOnly)
{
    EXPECT_THAT(pathsWith({{"stderr", "noise"}}),
                AllOf(Field(&Result::status, 0), Field(&Result::errors, "noise\n"),
                      Field(&Result::output, text({header, rule, first, second}))));
}

TEST_F(Shaping, NoiseComesBeforeAFailureToo)
{
    EXPECT_THAT(pathsWith({{"stderr", "noise"}, {"exit", 3}}),
                AllOf(Field(&Result::status, 3), Field(&Result::errors, "noise\n"),
                      Field(&Result::output, "")));
}

TEST_F(Shaping, AFloodRepeatsTheLastLine)
{
    const std::string output = pathsWith({{"flood_mib", 3}}).output;
    const std::string whole = text({header, rule, first, second});
    EXPECT_EQ(output.size(), whole.size() + (3U << 20));
    EXPECT_EQ(output.substr(0, whole.size() + 2 * sizeof second - 2), whole + second + second);
}

TEST_F(Shaping, AFloodEndsWhenNobodyReads)
{
    useScenario("fault-flood");
    const std::string script = "\"$0\" getdmpnode nodename=sdc | head -c 10; echo ${PIPESTATUS[0]}";
    EXPECT_EQ(start({"/bin/bash", "-c", script, SIMULATOR_TOOLS "/kodmpadm"}).finish().output,
              "NAME      141\n");
}

} // namespace
