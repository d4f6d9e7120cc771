#include "command/raw_output.h"

#include <memory>

#include <gtest/gtest.h>

#include "captured_output.h"
#include "command/bare_output.h"
#include "tests/support/terminal.h"

using command::BareOutput;
using command::RawOutput;

namespace {

const std::vector<command::Column> columns{{"DISK", "disk"}, {"PARTITION", "partition"}};

TEST(RawOutput, FieldsAreWordsWithOneBlankBetween)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), columns, true);
    raw.write({{"disk", "/dev/a b\n"}, {"partition", true}});
    raw.write({{"disk", nullptr}, {"partition", false}});
    EXPECT_EQ(output.text(), "DISK PARTITION\n/dev/a\\x20b\\x0a yes\n- no\n");
}

TEST(RawOutput, AnEmptyFieldKeepsItsPlace)
{
    CapturedOutput output;
    RawOutput raw(output.stream(), columns, false);
    raw.write({{"disk", ""}, {"partition", 7}});
    EXPECT_EQ(output.text(), " 7\n");
}

TEST(BareOutput, WritesOneFieldUnalteredALineEach)
{
    CapturedOutput output;
    BareOutput bare(output.stream(), columns.front());
    bare.write({{"disk", "/dev/a b\t\xff"}, {"partition", true}});
    bare.write({{"disk", nullptr}, {"partition", false}});
    EXPECT_EQ(output.text(), "/dev/a b\t\xff\n\n");
}

TEST(BareOutput, OnATerminalTheFieldIsPrintable)
{
    const Terminal terminal;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fdopen(dup(terminal.descriptor()), "w"), std::fclose);
    command::OutputStream output(file.get());
    BareOutput bare(output, columns.front());
    bare.write({{"disk", "/dev/a b\t\x1b[2J\n\xff"}});
    bare.write({{"disk", nullptr}});
    output.flush();
    EXPECT_EQ(terminal.written(), "/dev/a b\\x09\\x1b[2J\\x0a\\xff\n\n");
}

} // namespace
