#include "text/printable.h"

#include <clocale>
#include <cwchar>

#include <gtest/gtest.h>

using command::printable;
using command::printableWord;

namespace {

class Printable : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_F(Printable, OrdinaryTextStaysAsItIs)
{
    EXPECT_EQ(printable(""), "");
    EXPECT_EQ(printable("/dev/mapper/mpath a\\b"), "/dev/mapper/mpath a\\b");
    EXPECT_EQ(printable("/dev/sd\u00e4\u6f22"), "/dev/sd\u00e4\u6f22");
}

TEST_F(Printable, ControlCharactersAreEscaped)
{
    EXPECT_EQ(printable("a\nb\tc\x1b[1m\x7f"), "a\\x0ab\\x09c\\x1b[1m\\x7f");
    EXPECT_EQ(printable(std::string_view("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(printable("\u0085"), "\\xc2\\x85");
}

TEST_F(Printable, BytesThatAreNoCharactersAreEscaped)
{
    EXPECT_EQ(printable("\xff\xe4x\xc3"), "\\xff\\xe4x\\xc3");
}

TEST_F(Printable, CharactersWithoutAWidthAreEscaped)
{
    EXPECT_EQ(printable("e\u0301"), "e\\xcc\\x81");
    EXPECT_EQ(printable("\u202eb"), "\\xe2\\x80\\xaeb");
}

TEST_F(Printable, ControlCharactersAreEscapedWhateverWidthTheLocaleGivesThem)
{
    ASSERT_EQ(wcwidth(L'\u00ad'), 1);
    EXPECT_EQ(printable("a\u00adb"), "a\\xc2\\xadb");
}

TEST_F(Printable, AnEscapeInTheTextIsDistinguishable)
{
    EXPECT_EQ(printable("a\\x0ab"), "a\\x5cx0ab");
    EXPECT_EQ(printable("a\\\\x"), "a\\\\x5cx");
}

TEST_F(Printable, WhatTheLocaleDoesNotKnowIsEscaped)
{
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(printable("\u00e4b"), "\\xc3\\xa4b");
}

TEST_F(Printable, AWordHoldsNoBlankAndNothingOutsideAscii)
{
    EXPECT_EQ(printableWord("/dev/~!sda"), "/dev/~!sda");
    EXPECT_EQ(printableWord("a b\\c\u00e4\x7f\n"), "a\\x20b\\x5cc\\xc3\\xa4\\x7f\\x0a");
    EXPECT_EQ(printableWord(std::string_view("\0", 1)), "\\x00");
}

} // namespace
