// The help of the command and of its subcommands, and its version.
#include <gmock/gmock.h>

#include <sstream>

#include "kovm/retry_policy.h"
#include "parsed_arguments.h"

namespace {

using testing::HasSubstr;

TEST(Options, HelpIsAnAnswer)
{
    EXPECT_THAT(information({"--help"}), HasSubstr("Exit status:"));
    for (const command::Subcommand& subcommand : command::subcommands()) {
        EXPECT_THAT(information({"-h"}), HasSubstr("\n  " + subcommand.name));
        EXPECT_THAT(information({subcommand.name, "--help"}),
                    HasSubstr("Usage: dmpclaim " + subcommand.name));
    }
    EXPECT_THAT(information({"show", "--frob", "-h"}), HasSubstr("Usage: dmpclaim show"));
}

TEST(Options, HelpIsASubcommandToo)
{
    EXPECT_EQ(information({"help"}), information({"--help"}));
    for (const command::Subcommand& subcommand : command::subcommands())
        EXPECT_EQ(information({"help", subcommand.name}), information({subcommand.name, "-h"}));
    EXPECT_THAT(complaint({"help", "x"}),
                testing::StartsWith("help: unknown subcommand 'x'; there are list, "));
    EXPECT_EQ(complaint({"help", "show", "x"}), "help: unexpected argument 'x'");
}

TEST(Options, HelpEndsWithTwoExamplesThatCanBeTyped)
{
    for (const command::Subcommand& subcommand : command::subcommands()) {
        EXPECT_EQ(subcommand.examples.size(), 2U) << subcommand.name;
        const std::string help = information({"help", subcommand.name});
        const std::string examples = help.substr(help.find("\nExamples:\n"));
        for (const command::Example& example : subcommand.examples) {
            EXPECT_THAT(examples, HasSubstr(std::string("  dmpclaim ") + example.arguments));
            std::istringstream words(example.arguments);
            Arguments arguments;
            for (std::string word; words >> word && word.find_first_of("<>|") != 0;)
                arguments.push_back(word);
            EXPECT_EQ(options(arguments).subcommand, &subcommand);
        }
    }
}

TEST(Options, HelpExplainsEachColumnAndTraceLevel)
{
    for (const command::Subcommand& subcommand : command::subcommands()) {
        if (subcommand.headings == nullptr)
            continue;
        const std::string help = information({subcommand.name, "-h"});
        for (const command::Heading& heading : subcommand.headings({}).all) {
            const std::string name(heading.name);
            EXPECT_THAT(help, testing::ContainsRegex("\n  " + name + " +[a-z]")) << name;
        }
    }
    EXPECT_THAT(information({"-h"}), testing::ContainsRegex("\n  1  .*\n  2  .*\n  3  .*\n"
                                                            "  4  .*\n  5  .*\n  6  .*\n"));
}

TEST(Options, HelpHasTheWidthOfTheTerminal)
{
    for (const std::size_t width : {40U, 60U, 200U}) {
        const auto help = std::get<command::Information>(
            command::parseOptions({"active", "-h"}, command::subcommands(), width));
        std::istringstream lines(help);
        std::size_t longest = 0;
        for (std::string line; std::getline(lines, line);)
            longest = std::max(longest, line.size());
        EXPECT_LE(longest, width);
        EXPECT_GT(longest, width - 10);
    }
}

TEST(Options, HelpBeginsALineBehindANameThatFillsItsColumn)
{
    const std::vector<command::Subcommand> made{{"wait",
                                                 "",
                                                 "",
                                                 command::Arguments::none,
                                                 {{"--for-fourteen-days", nullptr, "Fits"},
                                                  {"--for-twenty-five-days", nullptr, "Does not"}},
                                                 command::Form::text,
                                                 nullptr,
                                                 nullptr}};
    const auto help = std::get<command::Information>(command::parseOptions({"help", "wait"}, made));
    EXPECT_THAT(help, HasSubstr("\n  --for-fourteen-days   Fits\n"));
    EXPECT_THAT(help, HasSubstr("\n  --for-twenty-five-days\n                        Does not\n"));
}

TEST(Options, HelpTellsWhatIsAskedBesidesNames)
{
    EXPECT_THAT(information({"--help"}),
                HasSubstr("is told from the path alone, which need not\n"
                          "exist; 'active' and 'doctor' ask the volume manager's tools as well."));
    EXPECT_THAT(information({"active", "--help"}),
                HasSubstr("Remove the disk's node from the volume manager"));
}

void expectLinesThatFit(const std::string& help)
{
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 80U) << line;
}

TEST(Options, HelpFitsATerminal)
{
    expectLinesThatFit(information({"-h"}));
    for (const command::Subcommand& subcommand : command::subcommands())
        expectLinesThatFit(information({subcommand.name, "-h"}));
}

TEST(Options, HelpTellsTheLibrarysRetries)
{
    const std::string help = information({"active", "--help"});
    const auto& [waits, pause] = kovm::waitingPolicy;
    EXPECT_THAT(help, HasSubstr(std::to_string(pause.count()) + " seconds, up to " +
                                std::to_string(waits) + " times"));
    const auto& [refreshes, between] = kovm::refreshingPolicy;
    EXPECT_THAT(help,
                testing::ContainsRegex("up to " + std::to_string(refreshes) + " times, with " +
                                       std::to_string(between.count()) + "[ \n]+seconds between"));
}

TEST(Options, TheVersionIsAnAnswer)
{
    EXPECT_EQ(information({"-V"}), "dmpclaim " DMPCLAIM_VERSION "\n");
    EXPECT_EQ(information({"show", "--version"}), "dmpclaim " DMPCLAIM_VERSION "\n");
}

} // namespace
