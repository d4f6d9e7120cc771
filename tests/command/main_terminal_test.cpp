// Names that try to steer a terminal, through every form of output and every message.
#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/command/dmpclaim.h"
#include "tests/support/harmless_text.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal.h"

using testing::EndsWith;
using testing::HasSubstr;

namespace {

const std::string hostile = "\x1b[2J\x1b]0;t\a\r\n\x7f\x9b"
                            "31m\u009b\u0085\u2028\u202e\u200b\ufeff\u00ad\U000e0041\xe2\x80";

struct Shown {
    std::string screen;
    std::string errors;
};

std::string screenAfter(const std::vector<std::string>& arguments,
                        const std::vector<std::string>& environment)
{
    const Terminal terminal;
    Setting setting;
    setting.output = terminal.descriptor();
    setting.environment = environment;
    run(arguments, {}, setting);
    return terminal.written();
}

/// Without colours, which steer a terminal, too.
Shown show(const std::vector<std::string>& arguments, const std::string& locale)
{
    const Terminal terminal;
    Setting setting;
    setting.output = terminal.descriptor();
    setting.environment = {"LC_ALL=" + locale, "NO_COLOR=1"};
    const std::string errors = run(arguments, {}, setting).errors;
    return {terminal.written(), errors};
}

/// Every character but the line ends is harmless.
bool isHarmlessText(const std::string& text)
{
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    return isHarmlessLines(text, lines);
}

TEST(Terminal, NoNameSteersItThroughAnAnswer)
{
    const std::string name = "/dev/sd" + hostile + "1";
    for (std::vector<std::string> arguments :
         std::vector<std::vector<std::string>>{{"show"},
                                               {"show", "-r"},
                                               {"show", "-J"},
                                               {"show", "--trace"},
                                               {"strip"},
                                               {"strip", "-r"},
                                               {"strip", "-J"},
                                               {"strip", "-o", "+name"},
                                               {"explain"},
                                               {"explain", "-J"},
                                               {"append"},
                                               {"active", "--dry-run"},
                                               {"active", "--dry-run", "-J"},
                                               {"doctor"},
                                               {"doctor", "--check"}}) {
        arguments.push_back(name);
        if (arguments.front() == "append")
            arguments.emplace_back("1");
        for (const char* locale : {"C", "C.UTF-8"}) {
            const Shown shown = show(arguments, locale);
            EXPECT_THAT(shown.screen, HasSubstr("[2J")) << testing::PrintToString(arguments);
            EXPECT_TRUE(isHarmlessText(shown.screen)) << shown.screen;
            EXPECT_TRUE(isHarmlessText(shown.errors)) << shown.errors;
        }
    }
}

TEST(Terminal, NoArgumentSteersItThroughAMessage)
{
    const TemporaryFolder folder;
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {hostile},
             {"--" + hostile},
             {"--output=" + hostile, "list"},
             {"--" + hostile + "="},
             {"show", "--" + hostile, "x"},
             {"append", "/dev/sda", hostile},
             {"append", "/dev/sda", "1", hostile},
             {"prefixes", "--trace=" + hostile},
             {"active", "-j", hostile, "x"},
             {"prefixes", "--trace-file", folder.file(hostile) + "/x"}}) {
        for (const char* locale : {"C", "C.UTF-8"}) {
            const Shown shown = show(arguments, locale);
            EXPECT_THAT(shown.errors, HasSubstr("[2J")) << testing::PrintToString(arguments);
            EXPECT_THAT(shown.errors, EndsWith("more information.\n"));
            EXPECT_TRUE(isHarmlessLines(shown.errors, 2)) << shown.errors;
            EXPECT_EQ(shown.screen, "");
        }
    }
}

TEST(Terminal, ShowsHeadingsInColourUnlessTheUserWantsNone)
{
    const std::vector<std::string> command{"show", "-oowner", "/dev/sda"};
    const std::string plain = "OWNER\nnative\n";
    const std::string colored = "\x1b[1mOWNER\x1b[0m\nnative\n";
    EXPECT_EQ(screenAfter(command, {"TERM=xterm", "NO_COLOR="}), colored);
    EXPECT_EQ(screenAfter(command, {"TERM=xterm", "NO_COLOR=1"}), plain);
    EXPECT_EQ(screenAfter(command, {"TERM=dumb", "NO_COLOR="}), plain);
    EXPECT_EQ(screenAfter({"show", "-oowner", "/dev/sda", "--color=never"}, {"TERM=xterm"}), plain);
    EXPECT_EQ(screenAfter({"show", "-oowner", "/dev/sda", "--color"}, {"NO_COLOR=1"}), colored);
}

TEST(Terminal, LongLinesEndAtItsWidthBetweenWords)
{
    const Terminal narrow({24, 60, 0, 0});
    Setting setting;
    setting.output = narrow.descriptor();
    setting.environment = {"NO_COLOR=1"};
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"explain", "/dev/mapper/mpathb"}, {"help", "active"}}) {
        const Result piped = run(arguments);
        run(arguments, {}, setting);
        std::istringstream lines(narrow.written());
        std::vector<std::string> wordsShown;
        for (std::string line; std::getline(lines, line);) {
            const bool isTable = line.find("(prefix") != std::string::npos;
            EXPECT_TRUE(line.size() <= 60 || isTable) << line;
            std::istringstream words(line);
            for (std::string word; words >> word;)
                wordsShown.push_back(word);
        }
        std::istringstream words(piped.output);
        for (std::string word; words >> word;)
            EXPECT_THAT(wordsShown, testing::Contains(word));
    }
}

TEST(Terminal, APipeGetsBareAnswersUnaltered)
{
    EXPECT_EQ(run({"strip", "/dev/sd" + hostile + "1"}).output, "/dev/sd" + hostile + "\n");
    EXPECT_EQ(run({"append", "/dev/sd" + hostile, "1"}).output, "/dev/sd" + hostile + "1\n");
}

} // namespace
