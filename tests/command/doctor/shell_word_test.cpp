#include "command/doctor/shell_word.h"

#include <gtest/gtest.h>

namespace {

using command::shellWord;

TEST(ShellWord, AnOrdinaryNameStaysAsItIs)
{
    for (const char* name : {"/dev/sdc", "sdc12", "a_Z-9.b,c:d=e@f%g+h"})
        EXPECT_EQ(shellWord(name), name);
}

TEST(ShellWord, WhatAShellWouldReadIsQuoted)
{
    EXPECT_EQ(shellWord("/dev/sd a"), "'/dev/sd a'");
    for (const char character : std::string("$`;&|<>()*?[]{}~#!\"\\\n\t"))
        EXPECT_EQ(shellWord({'/', character}), std::string("'/") + character + '\'');
    EXPECT_EQ(shellWord("\xff"), "'\xff'");
}

TEST(ShellWord, AQuoteEndsTheQuotesForItself)
{
    EXPECT_EQ(shellWord("a'b"), "'a'\\''b'");
}

TEST(ShellWord, AnEmptyTextIsAWordToo)
{
    EXPECT_EQ(shellWord(""), "''");
}

} // namespace
