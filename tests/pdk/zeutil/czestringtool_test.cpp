#include "pdk/include/czestringtool.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

using koze_pdk_4_4::CZeStringTool;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr auto notFound = std::numeric_limits<unsigned long>::max();

std::string everyByte()
{
    std::string bytes;
    for (int byte = 0; byte <= 0xff; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(StringTool, ConversionsLeaveTheTextUnchanged)
{
    for (const std::string& text :
         {std::string(), std::string("/usr/sbin/kodmpadm  "), std::string(1 << 20, 'x'),
          std::string("a\0b\0", 4), std::string(1, '\0'), everyByte()}) {
        EXPECT_EQ(CZeStringTool::tstr2str(CZeStringTool::str2tstr(text)), text);
        EXPECT_EQ(CZeStringTool::str2tstr(text).length(), text.size());
    }
}

TEST(StringTool, ConvertsAFrameworkStringThatWasJoined)
{
    ACE_String_Base<char> path("/usr/sbin/");
    path += ACE_String_Base<char>("kodmpadm  ");
    EXPECT_EQ(CZeStringTool::tstr2str(path), "/usr/sbin/kodmpadm  ");
    EXPECT_EQ(CZeStringTool::tstr2str(ACE_String_Base<char>()), "");
}

TEST(StringTool, TheConvertedTextIsACopy)
{
    std::string text = "sdb";
    const ACE_String_Base<char> converted = CZeStringTool::str2tstr(text);
    text[0] = 'x';
    EXPECT_STREQ(converted.c_str(), "sdb");
}

struct Trimming {
    std::string text;
    std::string characters;
    std::string trimmed;
};

TEST(StringTool, TrimRemovesCharactersFromBothEndsOnly)
{
    const std::vector<Trimming> trimmings = {
        {"/usr/sbin/kodmpadm  ", " \n\t\r", "/usr/sbin/kodmpadm"},
        {" \t\r\nab\n\r\t ", " \n\t\r", "ab"},
        {" a b\tc ", " \n\t\r", "a b\tc"},
        {"ab ", " ", "ab"},
        {" ab", " ", "ab"},
        {"ab", " ", "ab"},
        {" a ", " ", "a"},
        {"", " ", ""},
        {" \t\n", " \n\t\r", ""},
        {" ab ", "", " ab "},
        {"", "", ""},
        {"\va\f", " \n\t\r", "\va\f"},
        {"xaxbx", "x", "axb"},
        {std::string("\0 a\0", 4), " ", std::string("\0 a\0", 4)},
        {std::string("\0 a\0", 4), std::string(" \0", 2), "a"},
        {"\xff\x80", "\xff", "\x80"},
    };
    for (const Trimming& trimming : trimmings)
        EXPECT_EQ(CZeStringTool::trim(trimming.text, trimming.characters), trimming.trimmed)
            << '"' << trimming.text << '"';
}

struct Splitting {
    std::string text;
    std::string delimiters;
    std::vector<std::string> pieces;
};

TEST(StringTool, TokenizeSplitsAtEveryRunOfDelimiters)
{
    const std::vector<Splitting> splittings = {
        {"sdc     ENABLED(A)    PRIMARY      c2\n",
         " \n\t",
         {"sdc", "ENABLED(A)", "PRIMARY", "c2"}},
        {"a b", " ", {"a", "b"}},
        {"  a\t\n b ", " \n\t", {"a", "b"}},
        {"a", " ", {"a"}},
        {"abc", " ", {"abc"}},
        {"", " \n\t", {}},
        {" \t\n ", " \n\t", {}},
        {" ", " ", {}},
        {"a b", "", {"a b"}},
        {"", "", {}},
        {"a\rb", " \n\t", {"a\rb"}},
        {"sdb,sdc,,sdd,", ",", {"sdb", "sdc", "sdd"}},
        {std::string("a\0b c", 5), " ", {std::string("a\0b", 3), "c"}},
        {std::string("a\0b c", 5), std::string("\0", 1), {"a", "b c"}},
        {"\xe9\xff\x80", "\xff", {"\xe9", "\x80"}},
    };
    for (const Splitting& splitting : splittings)
        EXPECT_EQ(CZeStringTool::tokenize(splitting.text, splitting.delimiters), splitting.pieces)
            << '"' << splitting.text << '"';
}

TEST(StringTool, EveryByteCanBeADelimiterOrNone)
{
    const std::string bytes = everyByte();
    EXPECT_THAT(CZeStringTool::tokenize(bytes, bytes), IsEmpty());
    EXPECT_THAT(CZeStringTool::tokenize(bytes, ""), ElementsAre(bytes));
    for (const char byte : bytes) {
        const char other = byte == 'a' ? 'b' : 'a';
        const std::string text = {other, byte, other};
        EXPECT_THAT(CZeStringTool::tokenize(text, std::string(1, byte)),
                    ElementsAre(std::string(1, other), std::string(1, other)));
    }
}

/// Returns the result of `find`, which reads and writes `index`.
unsigned long found(const std::vector<std::string>& lines, const char* text, unsigned long& index,
                    bool ignoreCase = false)
{
    return CZeStringTool::find(lines, text, index, ignoreCase);
}

const std::vector<std::string> table = {"NAME STATE", "====", "sdb ENABLED", "", "sdb NAME"};

TEST(StringTool, FindReturnsAndStoresTheFirstLineThatHoldsTheText)
{
    for (const auto& [text, line] : std::vector<std::pair<const char*, unsigned long>>{
             {"NAME", 0}, {"STATE", 0}, {"=", 1}, {"ENABLED", 2}, {"b N", 4}, {"", 0}}) {
        unsigned long index = 0;
        EXPECT_EQ(found(table, text, index), line) << text;
        EXPECT_EQ(index, line) << text;
    }
}

TEST(StringTool, FindReturnsAllOnesAndLeavesTheIndexWhenNoLineHoldsTheText)
{
    for (const char* text : {"name", "NAMES", "sdc", "NAME STATE ", "STATE====", "\n"}) {
        unsigned long index = 0;
        EXPECT_EQ(found(table, text, index), notFound) << text;
        EXPECT_EQ(index, 0U) << text;
    }
}

TEST(StringTool, FindBeginsAtTheIndex)
{
    for (const auto& [from, line] : std::vector<std::pair<unsigned long, unsigned long>>{
             {1, 4}, {4, 4}, {5, notFound}, {6, notFound}, {notFound, notFound}}) {
        unsigned long index = from;
        EXPECT_EQ(found(table, "NAME", index), line) << from;
        EXPECT_EQ(index, line == notFound ? from : line) << from;
    }
}

TEST(StringTool, FindInNoLinesFindsNothing)
{
    unsigned long index = 0;
    EXPECT_EQ(found({}, "NAME", index), notFound);
    EXPECT_EQ(found({}, "", index), notFound);
}

TEST(StringTool, FindSeesAnEmptyTextInAnEmptyLine)
{
    unsigned long index = 0;
    EXPECT_EQ(found({""}, "", index), 0U);
    EXPECT_EQ(found({""}, "", index, true), 0U);
}

TEST(StringTool, FindLooksBehindANulByte)
{
    unsigned long index = 0;
    EXPECT_EQ(found({std::string("a\0NAME", 6)}, "NAME", index), 0U);
    EXPECT_EQ(found({std::string("a\0name", 6)}, "NAME", index, true), 0U);
}

TEST(StringTool, FindIgnoresTheCaseOfAsciiLettersWhenAsked)
{
    for (const char* text : {"name", "NAME", "nAmE", "e sTa"}) {
        unsigned long index = 0;
        EXPECT_EQ(found(table, text, index, true), 0U) << text;
    }
    unsigned long index = 0;
    EXPECT_EQ(found({"abcxyz"}, "ABCXYZ", index, true), 0U);
    EXPECT_EQ(found({"ABCXYZ"}, "abcxyz", index, true), 0U);
    EXPECT_EQ(found(table, "sdc", index, true), notFound);
}

TEST(StringTool, FindIgnoresTheCaseOfNothingElse)
{
    const std::vector<std::pair<std::string, const char*>> pairs = {
        {"@", "`"}, {"[", "{"}, {"\xc9", "\xe9"}, {"1", "\x11"}};
    for (const auto& [line, text] : pairs) {
        unsigned long index = 0;
        EXPECT_EQ(found({line}, text, index, true), notFound) << text;
        EXPECT_EQ(found({text}, line.c_str(), index, true), notFound) << text;
    }
}

TEST(StringTool, ATableOfAMillionLinesIsSearched)
{
    std::vector<std::string> lines(1000000, "sdc ENABLED");
    unsigned long index = 0;
    EXPECT_EQ(found(lines, "NAME", index), notFound);
    lines.back() = "NAME";
    EXPECT_EQ(found(lines, "NAME", index), lines.size() - 1);
}

TEST(StringTool, ALineOfAMillionColumnsIsSplit)
{
    std::string line;
    for (int column = 0; column < 1000000; ++column)
        line += "sdc  ";
    EXPECT_THAT(CZeStringTool::tokenize(line, " "), testing::SizeIs(1000000));
}

} // namespace
