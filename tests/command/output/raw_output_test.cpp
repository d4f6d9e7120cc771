#include "output/raw_output.h"

#include <memory>

#include <gtest/gtest.h>

#include "captured_output.h"
#include "output/bare_output.h"
#include "tests/support/terminal.h"

using command::BareOutput;
using command::RawOutput;

namespace {

const std::vector<command::Heading> headings{{"DISK"}, {"PARTITION"}};

TEST(RawOutput, FieldsAreWordsWithOneBlankBetween)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), headings);
    raw.write({"/dev/a b\n", true});
    raw.write({{}, false});
    EXPECT_EQ(output.text(), "DISK PARTITION\n/dev/a\\x20b\\x0a yes\n- no\n");
}

TEST(RawOutput, AnEmptyFieldKeepsItsPlace)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), {});
    raw.write({"", std::int64_t{7}});
    EXPECT_EQ(output.text(), " 7\n");
}

TEST(BareOutput, WritesOneFieldUnalteredALineEach)
{
    CapturedOutput output;
    BareOutput bare(output.stream());
    bare.write({"/dev/a b\t\xff", true});
    bare.write({{}, false});
    EXPECT_EQ(output.text(), "/dev/a b\t\xff\n\n");
}

TEST(BareOutput, OnATerminalTheFieldIsPrintable)
{
    const Terminal terminal;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fdopen(dup(terminal.descriptor()), "w"), std::fclose);
    command::OutputStream output(file.get());
    BareOutput bare(output);
    bare.write({"/dev/a b\t\x1b[2J\n\xff"});
    bare.write({command::Field()});
    output.flush();
    EXPECT_EQ(terminal.written(), "/dev/a b\\x09\\x1b[2J\\x0a\\xff\n\n");
}

} // namespace
