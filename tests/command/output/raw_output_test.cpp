#include "output/raw_output.h"

#include <gtest/gtest.h>

#include "captured_output.h"
#include "output/bare_output.h"
#include "output/pairs_output.h"
#include "tests/support/terminal.h"

using command::BareOutput;
using command::PairsOutput;
using command::RawOutput;

namespace {

const std::vector<command::Heading> headings{{"DISK"}, {"PARTITION"}};

TEST(RawOutput, FieldsAreWordsWithOneBlankBetween)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), headings);
    raw.write({"/dev/a b\n", true});
    raw.write({{}, false});
    raw.write({command::Texts{}, command::Texts{"-"}});
    EXPECT_EQ(output.text(), "DISK PARTITION\n/dev/a\\x20b\\x0a yes\n- no\n- \\x2d\n");
}

TEST(RawOutput, AnEmptyFieldKeepsItsPlace)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), {});
    raw.write({"", std::int64_t{7}});
    EXPECT_EQ(output.text(), "\"\" 7\n");
}

TEST(RawOutput, ATextThatLooksLikeAPlaceholderIsEscaped)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), {});
    raw.write({"-", R"("")", "--"});
    EXPECT_EQ(output.text(), "\\x2d \\x22\\x22 --\n");
}

TEST(PairsOutput, FieldsComeWithTheirNames)
{
    CapturedOutput output;
    PairsOutput pairs(output.stream(), headings);
    pairs.write({"/dev/a b\n", true});
    pairs.write({{}, false});
    EXPECT_EQ(output.text(), "DISK=\"/dev/a b\\x0a\" PARTITION=\"yes\"\n"
                             "DISK=\"\" PARTITION=\"no\"\n");
}

TEST(PairsOutput, NoFieldLeavesItsQuotesOrIsExpandedByAShell)
{
    CapturedOutput output;
    PairsOutput(output.stream(), {{"DISK"}}).write({R"("$(x)`y`\!)"});
    EXPECT_EQ(output.text(), "DISK=\"\\x22\\x24(x)\\x60y\\x60\\x5c\\x21\"\n");
}

TEST(BareOutput, AnswersMayEndInNul)
{
    CapturedOutput output;
    BareOutput bare(output.stream(), '\0');
    bare.write({"/dev/a\nb"});
    bare.write({command::Field()});
    EXPECT_EQ(output.text(), std::string("/dev/a\nb\0\0", 10));
}

TEST(BareOutput, WritesOneFieldUnalteredALineEach)
{
    CapturedOutput output;
    BareOutput bare(output.stream(), '\n');
    bare.write({"/dev/a b\t\xff", true});
    bare.write({{}, false});
    EXPECT_EQ(output.text(), "/dev/a b\t\xff\n\n");
}

TEST(BareOutput, OnATerminalTheFieldIsPrintable)
{
    const Terminal terminal;
    command::OutputStream output(terminal.descriptor());
    BareOutput bare(output, '\n');
    bare.write({"/dev/a b\t\x1b[2J\n\xff"});
    bare.write({command::Field()});
    output.flush();
    EXPECT_EQ(terminal.written(), "/dev/a b\\x09\\x1b[2J\\x0a\\xff\n\n");
}

} // namespace
