#include "output/table_output.h"

#include <clocale>
#include <sstream>

#include <gmock/gmock.h>

#include "captured_output.h"

using command::Row;
using command::TableOutput;

namespace {

const std::vector<command::Heading> headings{{"NAME"}, {"CLAIM", command::Kind::number}, {"DISK"}};

Row row(const std::string& name)
{
    return {name, std::int64_t{16}, {}};
}

std::string tableOf(const std::vector<Row>& rows, bool withHeadings = true)
{
    CapturedOutput output;
    TableOutput table(output.stream(), headings, withHeadings);
    for (const Row& row : rows)
        table.write(row);
    table.finish();
    return output.text();
}

TEST(TableOutput, ColumnsAreAligned)
{
    EXPECT_EQ(tableOf({row("/dev/mapper/mpathb"), row("x"), row("")}),
              "NAME               CLAIM DISK\n"
              "/dev/mapper/mpathb    16 -\n"
              "x                     16 -\n"
              "                      16 -\n");
}

TEST(TableOutput, HeadingsCanBeLeftOut)
{
    EXPECT_EQ(tableOf({row("a"), row("bc")}, false), "a  16 -\nbc 16 -\n");
}

TEST(TableOutput, WithoutRowsThereAreHeadingsOnly)
{
    EXPECT_EQ(tableOf({}), "NAME CLAIM DISK\n");
    EXPECT_EQ(tableOf({}, false), "");
}

TEST(TableOutput, NamesAreMadePrintableOnce)
{
    EXPECT_EQ(tableOf({row("a b\n"), row(std::string("\0", 1)), row("\\x0a")}, false),
              "a b\\x0a 16 -\n"
              "\\x00    16 -\n"
              "\\x5cx0a 16 -\n");
}

TEST(TableOutput, WidthsAreCountedInCellsOfTheTerminal)
{
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(tableOf({row("\u6f22\u5b57"), row("\u00e4"), row("12345")}, false),
              "\u6f22\u5b57  16 -\n"
              "\u00e4     16 -\n"
              "12345 16 -\n");
    std::setlocale(LC_CTYPE, "C");
}

TEST(TableOutput, WidthsAreKeptFromBatchToBatch)
{
    std::vector<Row> rows(2000, row("x"));
    rows[300] = row("wider");
    std::istringstream lines(tableOf(rows, false));
    std::vector<std::string> distinct;
    for (std::string line; std::getline(lines, line);) {
        if (distinct.empty() || distinct.back() != line)
            distinct.push_back(line);
    }
    EXPECT_THAT(distinct, testing::ElementsAre("x 16 -", "x     16 -", "wider 16 -", "x     16 -"));
}

TEST(TableOutput, RowsGoOutInBatches)
{
    CapturedOutput output;
    TableOutput table(output.stream(), headings, true);
    for (int i = 0; i < 100; ++i)
        table.write(row("x"));
    EXPECT_EQ(output.text(), "");
    for (int i = 0; i < 400; ++i)
        table.write(row("x"));
    EXPECT_NE(output.text(), "");
}

TEST(TableOutput, CellsOf256BytesAreAlignedAndLongerOnesAreNot)
{
    const std::string aligned(256, 'x');
    const std::string longer(257, 'x');
    EXPECT_EQ(tableOf({row(aligned), row("a")}, false),
              aligned + " 16 -\na" + std::string(255, ' ') + " 16 -\n");
    EXPECT_EQ(tableOf({row(longer), row("a")}, false), longer + " 16 -\na 16 -\n");
}

TEST(TableOutput, AVeryLongNameWidensNoOtherRow)
{
    const std::string longName(1 << 20, 'x');
    // Compared here, so that no failure prints a mebibyte.
    EXPECT_TRUE(tableOf({row("a"), row(longName), row("b"), row(longName)}) ==
                "NAME CLAIM DISK\na       16 -\n" + longName + " 16 -\nb       16 -\n" + longName +
                    " 16 -\n");
}

} // namespace
