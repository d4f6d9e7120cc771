#include "cli/options.h"

#include <chrono>

#include <gmock/gmock.h>

#include "parsed_arguments.h"

using command::Form;
using command::namesOf;
using command::Options;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(Options, EverySubcommandIsKnown)
{
    for (const command::Subcommand& subcommand : command::subcommands()) {
        Arguments arguments{subcommand.name};
        if (subcommand.arguments != command::Arguments::none)
            arguments.emplace_back("x");
        if (subcommand.arguments == command::Arguments::diskAndNumber)
            arguments.emplace_back("1");
        EXPECT_EQ(options(arguments).subcommand, &subcommand);
    }
}

TEST(Options, PathsAreTakenAsTheyAre)
{
    const Arguments paths{"[a,b]", "{}", "", "++", "list", "a b", "[", "-", "\xff"};
    Arguments arguments{"show"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    EXPECT_EQ(options(arguments).paths, paths);
}

TEST(Options, AfterTwoHyphensThereAreOnlyValues)
{
    EXPECT_THAT(options({"show", "a", "--", "-J", "--", "--x=", "show", "[]", ""}).paths,
                ElementsAre("a", "-J", "--", "--x=", "show", "[]", ""));
    EXPECT_THAT(options({"strip", "--", "-J"}).paths, ElementsAre("-J"));
    EXPECT_EQ(options({"append", "--", "-d", "7"}).partnum, 7U);
}

TEST(Options, GlobalOptionsStandBeforeOrAfterTheSubcommand)
{
    for (const Arguments& arguments :
         {Arguments{"-J", "--trace=3", "-o", "NAME", "show", "x"},
          Arguments{"show", "x", "-J", "--trace=3", "-oNAME"},
          Arguments{"--json", "show", "--trace=3", "x", "--output=name"}}) {
        const Options parsed = options(arguments);
        EXPECT_EQ(parsed.form, Form::json);
        EXPECT_EQ(parsed.trace.level, 3);
        EXPECT_EQ(namesOf(parsed.columns), "NAME");
    }
}

TEST(Options, ListAndShowMakeTables)
{
    EXPECT_EQ(options({"list"}).form, Form::table);
    EXPECT_EQ(options({"show", "x"}).form, Form::table);
    EXPECT_EQ(options({"show", "x", "-r"}).form, Form::raw);
    EXPECT_EQ(options({"show", "x", "-P"}).form, Form::pairs);
    EXPECT_EQ(options({"show", "x", "--json-lines"}).form, Form::jsonLines);
}

TEST(Options, TheOthersAnswerBareUnlessColumnsAreChosen)
{
    EXPECT_EQ(options({"strip", "x"}).form, Form::bare);
    EXPECT_EQ(options({"prefixes"}).form, Form::bare);
    EXPECT_EQ(options({"append", "x", "1"}).form, Form::bare);
    EXPECT_EQ(options({"append", "x", "1", "-o", "NAME"}).form, Form::table);
    EXPECT_EQ(options({"append", "x", "1", "-o", "NAME", "-r"}).form, Form::raw);
    EXPECT_EQ(options({"explain", "x"}).form, Form::text);
    EXPECT_EQ(options({"explain", "x", "-J"}).form, Form::json);
    EXPECT_EQ(options({"explain", "x", "--json-lines"}).form, Form::jsonLines);
    EXPECT_EQ(options({"strip", "x", "-z"}).form, Form::zero);
}

TEST(Options, ThereIsOneForm)
{
    EXPECT_EQ(complaint({"show", "x", "-J", "-r"}),
              "show: --json and --raw exclude each other: leave one of them out");
    EXPECT_EQ(complaint({"show", "x", "--json-lines", "-J"}),
              "show: --json and --json-lines exclude each other: leave one of them out");
    EXPECT_EQ(complaint({"-P", "explain", "x"}),
              "explain: explain prints no columns and takes no --pairs");
    for (const std::string json : {"--json", "--json-lines"})
        EXPECT_EQ(complaint({"show", "x", json, "-n"}),
                  "show: " + json + " and --noheadings exclude each other: leave one of them out");
}

TEST(Options, AnswersThatEndInNulHaveOneColumn)
{
    EXPECT_EQ(options({"list", "-z", "-o", "NAME"}).form, Form::zero);
    EXPECT_EQ(complaint({"list", "-z", "-o", "NAME,DISK"}),
              "list: --zero prints one column; choose it with -o: NAME, DISK");
}

TEST(Options, AllColumnsCanBeChosen)
{
    EXPECT_EQ(namesOf(options({"append", "x", "1", "-O"}).columns),
              "NAME, DISK, PARTNUM, OWNER, CLAIM");
    EXPECT_EQ(options({"append", "x", "1", "-O"}).form, Form::table);
    EXPECT_EQ(complaint({"list", "-O", "-o", "NAME"}),
              "list: --output and --output-all exclude each other: leave one of them out");
}

TEST(Options, ColoursAreAChoice)
{
    using command::ColorChoice;
    EXPECT_EQ(options({"list"}).color, ColorChoice::automatic);
    EXPECT_EQ(options({"list", "--color"}).color, ColorChoice::always);
    EXPECT_EQ(options({"--color=never", "list"}).color, ColorChoice::never);
    EXPECT_EQ(options({"list", "--color=auto"}).color, ColorChoice::automatic);
    EXPECT_EQ(complaint({"list", "--color=x"}),
              "list: 'x' is no choice of colours (auto, always, never)");
}

TEST(Options, AnEmptyArgumentDoesNotLimitDoctorOrPathsToNoDisk)
{
    EXPECT_EQ(complaint({"doctor", ""}),
              "doctor: an empty argument names no disk; leave it out to ask about all disks");
    EXPECT_EQ(complaint({"paths", "--watch", ""}), // which is not its value
              "paths: an empty argument names no disk; leave it out to ask about all disks");
}

TEST(Options, HeadingsAreForTables)
{
    EXPECT_TRUE(options({"list", "-r"}).withHeadings);
    EXPECT_FALSE(options({"list", "-n"}).withHeadings);
    EXPECT_TRUE(options({"strip", "x", "-o", "NAME"}).withHeadings);
    EXPECT_FALSE(options({"strip", "x", "-r"}).withHeadings);
}

TEST(Options, ColumnsDependOnTheSubcommand)
{
    EXPECT_EQ(namesOf(options({"strip", "x"}).columns), "DISK");
    EXPECT_EQ(namesOf(options({"strip", "x", "-J"}).columns),
              "NAME, OWNER, CLAIM, PARTITION, DISK, PARTNUM");
    EXPECT_EQ(namesOf(options({"strip", "x", "-o", "+NAME"}).columns), "DISK, NAME");
    EXPECT_EQ(namesOf(options({"append", "x", "1", "-J"}).columns),
              "NAME, DISK, PARTNUM, OWNER, CLAIM");
    EXPECT_EQ(namesOf(options({"prefixes", "-o", "+OWNER"}).columns), "PREFIX, OWNER");
    EXPECT_EQ(namesOf(options({"list", "-o", "name", "-o", "disk"}).columns), "DISK");
}

TEST(Options, PartitionNumbersAreDecimalAndFit)
{
    EXPECT_EQ(options({"append", "x", "0"}).partnum, 0U);
    EXPECT_EQ(options({"append", "x", "4294967295"}).partnum, 4294967295U);
    for (const std::string number : {"-1", "4294967296", "1x", "x1", "", "+1", " 1", "1 ", "0x1",
                                     "1.0", "99999999999999999999"})
        EXPECT_EQ(complaint({"append", "x", number}),
                  "append: '" + number + "' is not a partition number (0 to 4294967295)");
}

TEST(Options, TracingIsOffUnlessAskedFor)
{
    EXPECT_EQ(options({"list"}).trace.level, std::nullopt);
    EXPECT_EQ(options({"list"}).trace.file, std::nullopt);
    EXPECT_EQ(options({"list", "--trace-file", "f"}).trace.file, "f");
    EXPECT_EQ(options({"list", "--trace-file=f"}).trace.level, std::nullopt);
}

TEST(Options, TraceHasALevelAndNeverTakesTheNextArgument)
{
    const Options parsed = options({"show", "--trace", "x3"});
    EXPECT_EQ(parsed.trace.level, 6);
    EXPECT_THAT(parsed.paths, ElementsAre("x3"));
    EXPECT_THAT(options({"show", "3", "--trace"}).paths, ElementsAre("3"));
    EXPECT_THAT(options({"show", "--trace", "x"}).paths, ElementsAre("x"));
    EXPECT_THAT(options({"show", "--", "--trace", "3"}).paths, ElementsAre("--trace", "3"));
    for (const Arguments& arguments :
         {Arguments{"show", "--trace", "3", "x"}, Arguments{"append", "x", "--trace", "3"}})
        EXPECT_THAT(complaint(arguments), HasSubstr("'3' behind --trace is no level: write "
                                                    "--trace=3, or put the argument '3' in "
                                                    "front of --trace"));
    EXPECT_EQ(options({"--trace", "list"}).trace.level, 6);
    for (int level = 1; level <= 6; ++level)
        EXPECT_EQ(options({"list", "--trace=" + std::to_string(level)}).trace.level, level);
    EXPECT_EQ(options({"list", "--trace=1", "--trace=2"}).trace.level, 2);
}

TEST(Options, OtherTraceLevelsAreErrors)
{
    for (const std::string level : {"0", "7", "-1", "x", "true", "false", "3x", "[3]"})
        EXPECT_EQ(complaint({"list", "--trace=" + level}),
                  "list: '" + level + "' is not a trace level (1 to 6)");
}

TEST(Options, NulSeparatedInputCanBeForced)
{
    EXPECT_FALSE(options({"show", "-"}).nulSeparated);
    EXPECT_TRUE(options({"show", "-", "-0"}).nulSeparated);
    EXPECT_TRUE(options({"explain", "--null", "-"}).nulSeparated);
    EXPECT_EQ(complaint({"prefixes", "-0"}), "prefixes: unknown option '-0'");
}

TEST(Options, OptionsOfTheSubcommandsOwnAreKnownWhenTheyAreGiven)
{
    const Options usual = options({"active", "x"});
    EXPECT_FALSE(usual.isGiven("--refresh"));
    EXPECT_EQ(usual.value("--jobs"), std::nullopt);
    const Options told = options({"active", "x", "--refresh", "-j", "2", "-j64"});
    EXPECT_TRUE(told.isGiven("--refresh"));
    EXPECT_FALSE(told.isGiven("--dry-run"));
    EXPECT_EQ(told.value("--jobs"), "64");
    EXPECT_EQ(complaint({"show", "x", "--refresh"}), "show: unknown option '--refresh'");
}

TEST(Options, AValueThatMayBeLeftOutBelongsToAnOptionWithoutAShortName)
{
    const std::vector<command::Subcommand> made{{"wait",
                                                 "",
                                                 "",
                                                 command::Arguments::none,
                                                 {{"--seconds{2}", "[=N]", ""}},
                                                 Form::text,
                                                 nullptr,
                                                 nullptr}};
    const auto parsed = [&](const Arguments& arguments) {
        return std::get<Options>(command::parseOptions(arguments, made)).value("--seconds");
    };
    EXPECT_EQ(parsed({"wait", "--seconds", "5"}), "5");
    EXPECT_EQ(parsed({"wait", "--seconds"}), "2");
    EXPECT_EQ(parsed({"wait"}), std::nullopt);
}

TEST(Options, SecondsAreReadToTheMillisecond)
{
    using namespace std::chrono_literals;
    const std::pair<const char*, std::chrono::milliseconds> good[] = {
        {"0", 0ms},      {"10", 10s},     {"0.5", 500ms},        {"1.25", 1250ms}, {"007", 7s},
        {"0.0004", 0ms}, {"0.0006", 1ms}, {"1000000", 1000000s}, {"2.000", 2s}};
    for (const auto& [text, time] : good)
        EXPECT_EQ(command::parseSeconds(text), time) << text;
    for (const char* text : {"", ".", ".5", "5.", "1.2.3", "-1", "+1", "1e3", "inf", "nan", "0x10",
                             " 1", "1 ", "1,5", "9999999999999"})
        EXPECT_EQ(command::parseSeconds(text), std::nullopt) << text;
}

TEST(Options, WhatIsNotKnownIsNamed)
{
    EXPECT_EQ(complaint({"frobnicate"}), ": unknown subcommand 'frobnicate'");
    EXPECT_EQ(complaint({"--frob", "list"}), "list: unknown option '--frob'");
    EXPECT_EQ(complaint({"show", "--frob"}), "show: unknown option '--frob'");
    EXPECT_EQ(complaint({"show", "x", "-x"}), "show: unknown option '-x'");
    EXPECT_EQ(complaint({"prefixes", "x"}), "prefixes: unexpected argument 'x'");
    EXPECT_EQ(complaint({"append", "x", "1", "2"}), "append: unexpected argument '2'");
    EXPECT_EQ(complaint({"append", "x", "1", "--", "-2"}), "append: unexpected argument '-2'");
    EXPECT_EQ(complaint({"list", "-o", "[NAME]"}).substr(0, 28), "list: unknown column '[NAME]");
}

TEST(Options, WhatIsMissingIsNamed)
{
    EXPECT_THAT(complaint({}), testing::StartsWith(": no subcommand is given; there are list, "));
    EXPECT_THAT(complaint({"-J"}), testing::StartsWith(": no subcommand is given; there are "));
    EXPECT_THAT(complaint({"list", "-o", ""}),
                testing::StartsWith("list: the list of columns is empty; there are NAME, "));
    EXPECT_EQ(complaint({"show"}), "show: PATH is required");
    EXPECT_EQ(complaint({"append"}), "append: DISK is required");
    EXPECT_EQ(complaint({"append", "x"}), "append: N is required");
    EXPECT_EQ(complaint({"list", "-o"}), "list: --output needs a value");
    EXPECT_EQ(complaint({"list", "--trace-file"}), "list: --trace-file needs a value");
    EXPECT_EQ(complaint({"list", "--output="}), ": option '--output=' lacks its value");
    EXPECT_EQ(complaint({"--trace=", "list"}), ": option '--trace=' lacks its value");
}

TEST(Options, FlagsTakeNoValue)
{
    EXPECT_EQ(complaint({"list", "--json=no"}), "list: --json takes no value");
    EXPECT_EQ(complaint({"show", "x", "--null=1"}), "show: --null takes no value");
    EXPECT_EQ(complaint({"--json=no", "list"}), ": --json takes no value");
}

TEST(Options, ExplainAndDoctorTakeNoOptionsOfTables)
{
    for (const std::string name : {"explain", "doctor"}) {
        std::string reason = name + ": ";
        reason += name + " prints no columns and takes no ";
        EXPECT_EQ(complaint({name, "x", "-o", "NAME"}), reason + "--output");
        EXPECT_EQ(complaint({name, "x", "-n"}), reason + "--noheadings");
        EXPECT_EQ(complaint({name, "x", "-r"}), reason + "--raw");
        EXPECT_EQ(complaint({name, "x", "-J", "-r"}), reason + "--raw");
        EXPECT_THAT(information({name, "-h"}), testing::Not(HasSubstr("-n, ")));
    }
    EXPECT_THAT(information({"show", "-h"}), HasSubstr("-n, "));
}

TEST(Options, DoctorNeedsNoPathsAndPrintsText)
{
    EXPECT_EQ(options({"doctor"}).form, Form::text);
    EXPECT_THAT(options({"doctor"}).paths, testing::IsEmpty());
    EXPECT_EQ(options({"doctor", "-J"}).form, Form::json);
    EXPECT_THAT(options({"doctor", "/dev/sda", "/dev/sdb"}).paths,
                testing::ElementsAre("/dev/sda", "/dev/sdb"));
}

} // namespace
