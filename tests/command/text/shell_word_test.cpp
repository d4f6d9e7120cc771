#include "text/shell_word.h"

#include <gtest/gtest.h>

#include <clocale>
#include <random>
#include <string_view>
#include <vector>

#include "tests/support/process.h"
#include "text/printable.h"

namespace {

using command::shellCommand;
using command::shellWord;

TEST(ShellWord, AnOrdinaryNameStaysAsItIs)
{
    for (const char* name : {"/dev/sdc", "sdc12", "a_Z-9.b,c:d=e@f%g+h"})
        EXPECT_EQ(shellWord(name), name);
}

TEST(ShellWord, WhatAShellWouldReadIsQuoted)
{
    EXPECT_EQ(shellWord("/dev/sd a"), "'/dev/sd a'");
    for (const char character : std::string("$`;&|<>()*?[]{}~#!\"^"))
        EXPECT_EQ(shellWord({'/', character}), std::string("'/") + character + '\'');
}

TEST(ShellWord, AnEqualsSignIsQuotedAtTheBeginningOnly)
{
    EXPECT_EQ(shellWord("=ls"), "'=ls'");
    EXPECT_EQ(shellWord("a=ls"), "a=ls");
}

TEST(ShellWord, AQuoteEndsTheQuotesForItself)
{
    EXPECT_EQ(shellWord("a'b"), "'a'\\''b'");
}

TEST(ShellWord, AnEmptyTextIsAWordToo)
{
    EXPECT_EQ(shellWord(""), "''");
}

TEST(ShellWord, WhatATerminalWouldNotShowAsItIsBecomesOctalDigits)
{
    EXPECT_EQ(shellWord("\n\t\x1b\x7f"), R"($'\012\011\033\177')");
    EXPECT_EQ(shellWord("\xff"), R"($'\377')");
    EXPECT_EQ(shellWord("d\xc3\xbc"), R"($'d\303\274')");
    EXPECT_EQ(shellWord("'a b\x01'"), R"($'\047a\040b\001\047')");
    EXPECT_EQ(shellWord("a\\x41"), R"($'a\134x41')");
}

TEST(ShellCommand, EachWordIsQuotedWhereItStands)
{
    EXPECT_EQ(shellCommand("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc"),
              "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_EQ(shellCommand("tool  a=$(x)  b;c  d"), "tool  'a=$(x)'  'b;c'  d");
    EXPECT_EQ(shellCommand("  tool a\nb  "), "  tool $'a\\012b'  ");
    EXPECT_EQ(shellCommand("  "), "  ");
    EXPECT_EQ(shellCommand(""), "");
}

/// Bytes other than NUL. Those that are special to shells come more often.
class RandomText {
public:
    std::string operator()()
    {
        std::string text;
        while (text.size() < m_size)
            text += character();
        m_size = m_numbers() % longest;
        return text;
    }

private:
    static constexpr std::size_t longest = 12;

    char character()
    {
        constexpr std::string_view special = "$`'\"\\!#&;|<>()[]{}*?~^=%-, \n\tx0";
        const std::size_t number = m_numbers();
        return number % 2 == 0 ? special[number / 2 % special.size()]
                               : static_cast<char>(1 + number / 2 % 255);
    }

    std::mt19937 m_numbers{1}; // NOLINT(cert-msc51-cpp): the same texts in each run
    std::size_t m_size = 0;
};

/// A text, and how a terminal shows it as a word of a command.
struct Shown {
    std::string text;
    std::string word;
};

std::vector<Shown> shownTexts()
{
    std::vector<Shown> texts;
    RandomText random;
    for (int byte = 1; byte < 256; ++byte)
        texts.push_back({std::string(1, static_cast<char>(byte)), ""});
    while (texts.size() < 5000)
        texts.push_back({random(), ""});
    for (Shown& shown : texts)
        shown.word = command::printable(shellWord(shown.text));
    return texts;
}

/// The words as the shell reads them. Each call of printf has few, as command lines are bounded.
std::vector<std::string> wordsRead(const std::vector<std::string>& shell,
                                   const std::vector<Shown>& texts)
{
    std::string script;
    for (std::size_t i = 0; i < texts.size(); ++i)
        script += (i % 100 == 0 ? "\nprintf '%s\\0' " : " ") + texts[i].word;
    const Result ended = Process(shell, {}).finish(script + '\n');
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.status, 0);
    std::vector<std::string> words;
    std::string_view rest = ended.output;
    while (!rest.empty()) {
        words.emplace_back(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(words.back().size() + 1);
    }
    return words;
}

bool isInstalled(const std::string& program)
{
    return Process({"sh", "-c", "command -v \"$0\"", program}).finish().status == 0;
}

/// A shell that knows every form of a word. It expands the history, as an interactive shell does.
class EveryShell : public testing::TestWithParam<std::vector<std::string>> {};

INSTANTIATE_TEST_SUITE_P(
    Shells, EveryShell,
    testing::Values(std::vector<std::string>{"bash", "--norc", "-o", "history", "-o", "histexpand"},
                    std::vector<std::string>{"zsh", "-f", "-o", "banghist"},
                    std::vector<std::string>{"ksh"}, std::vector<std::string>{"busybox", "sh"}),
    [](const auto& shell) { return shell.param.front(); });

TEST_P(EveryShell, ReadsAnyTextBack)
{
    if (!isInstalled(GetParam().front()))
        GTEST_SKIP() << GetParam().front() << " is not installed";
    const std::vector<Shown> texts = shownTexts();
    const std::vector<std::string> words = wordsRead(GetParam(), texts);
    ASSERT_EQ(words.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(words[i], texts[i].text) << texts[i].word;
}

TEST(PlainShell, ReadsATextBackOrAtLeastExpandsNothing)
{
    const std::vector<Shown> texts = shownTexts();
    const std::vector<std::string> words = wordsRead({"dash"}, texts);
    ASSERT_EQ(words.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string& word = texts[i].word;
        const bool isEscaped = word.substr(0, 2) == "$'";
        ASSERT_EQ(words[i], isEscaped ? "$" + word.substr(2, word.size() - 3) : texts[i].text)
            << word;
    }
}

TEST(ShownWord, PassesATerminalUnchanged)
{
    for (const char* locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_CTYPE, locale), nullptr);
        for (const Shown& shown : shownTexts())
            ASSERT_EQ(command::printable(shown.word), shellWord(shown.text));
    }
}

} // namespace
