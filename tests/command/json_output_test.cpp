#include "command/json_output.h"

#include <gtest/gtest.h>

#include "captured_output.h"

using command::JsonOutput;
using command::Row;

namespace {

constexpr command::Column name{"NAME", "name"};
constexpr command::Column partnum{"PARTNUM", "partnum"};

TEST(JsonOutput, NoRowsMakeAnEmptyArray)
{
    CapturedOutput output;
    JsonOutput(output.stream(), "devices", {name}).finish();
    EXPECT_EQ(Row::parse(output.text()), Row::parse(R"({"schema": 1, "devices": []})"));
    EXPECT_EQ(output.text().back(), '\n');
}

TEST(JsonOutput, FieldsKeepTheirTypesAndTheChosenOrder)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "disks", {partnum, name});
    json.write({{"name", "a"}, {"partnum", 7}, {"owner", "native"}});
    json.write({{"name", "b"}, {"partnum", nullptr}, {"owner", "native"}});
    json.finish();
    EXPECT_EQ(Row::parse(output.text()).dump(),
              R"({"schema":1,"disks":[{"partnum":7,"name":"a"},{"partnum":null,"name":"b"}]})");
}

TEST(JsonOutput, WithoutColumnsRowsAreWhole)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "explanations", {});
    json.write({{"rule", "nobody"}, {"warnings", Row::array()}});
    json.finish();
    EXPECT_EQ(Row::parse(output.text())["explanations"].dump(),
              R"([{"rule":"nobody","warnings":[]}])");
}

TEST(JsonOutput, BytesThatAreNotUtf8AreReplaced)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "devices", {name});
    json.write({{"name", "a\xff"
                         "b\u00e4\n\x01"}});
    json.finish();
    EXPECT_EQ(Row::parse(output.text())["devices"][0]["name"], "a\ufffdb\u00e4\n\x01");
}

TEST(JsonOutput, CharactersOutsideAsciiAndDelAreEscapedAndComeBack)
{
    const std::string text = "\x7f\u0085\u009b\u00e4\u2028\u202e\ufeff\U000e0041";
    EXPECT_EQ(command::jsonText(text), R"("\u007f\u0085\u009b\u00e4\u2028\u202e\ufeff\udb40\udc41")"
                                       "\n");
    EXPECT_EQ(Row::parse(command::jsonText(text)), text);
}

} // namespace
