#include "output/json_output.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "captured_output.h"

using command::Document;
using command::Field;
using command::JsonOutput;
using Json = nlohmann::ordered_json;

namespace {

constexpr command::Heading name{"NAME"};
constexpr command::Heading partnum{"PARTNUM", command::Kind::number};

TEST(JsonOutput, NoRowsMakeAnEmptyArray)
{
    CapturedOutput output;
    JsonOutput(output.stream(), "devices", {name}).finish();
    EXPECT_EQ(Json::parse(output.text()), Json::parse(R"({"schema": 1, "devices": []})"));
    EXPECT_EQ(output.text().back(), '\n');
}

TEST(JsonOutput, FieldsKeepTheirTypesAndTheChosenOrder)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "disks", {partnum, name});
    json.write({Field(std::int64_t{7}), "a"});
    json.write({Field(), "b"});
    json.finish();
    EXPECT_EQ(Json::parse(output.text()).dump(),
              R"({"schema":1,"disks":[{"partnum":7,"name":"a"},{"partnum":null,"name":"b"}]})");
}

TEST(JsonOutput, ADocumentLooksTheSameHoweverLongItIs)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "disks", {name});
    json.write({"a"});
    json.write({"b"});
    json.finish();
    EXPECT_EQ(output.text(), Json::parse(output.text()).dump(2) + '\n');
}

TEST(JsonOutput, RowsGoOutAtOnce)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "disks", {name});
    json.write({"a"});
    EXPECT_EQ(output.text(),
              "{\n  \"schema\": 1,\n  \"disks\": [\n    {\n      \"name\": \"a\"\n    }");
}

TEST(JsonOutput, ADocumentThatIsCutShortIsClosedAndSaysSo)
{
    for (const int rows : {0, 1, 2}) {
        CapturedOutput output;
        JsonOutput json(output.stream(), "disks", {name});
        for (int row = 0; row < rows; ++row)
            json.write({"a"});
        output.stream().end(std::chrono::seconds(1));
        json.write({"late"});
        json.finish();
        const Json document = Json::parse(output.text());
        EXPECT_EQ(document["disks"].size(), static_cast<std::size_t>(rows));
        EXPECT_TRUE(document["interrupted"]);
        EXPECT_EQ(output.text(), document.dump(2) + '\n');
    }
}

TEST(JsonOutput, LinesHaveARecordEach)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "disks", {name, partnum}, command::JsonText::Layout::line);
    json.write({"a", Field(std::int64_t{7})});
    json.write({"b\n", Field()});
    json.write(Document::Record{{"rule", "nobody"}, {"modules", Document::List{1, 2}}});
    json.finish();
    EXPECT_EQ(output.text(), "{\"name\":\"a\",\"partnum\":7}\n"
                             "{\"name\":\"b\\n\",\"partnum\":null}\n"
                             "{\"rule\":\"nobody\",\"modules\":[1,2]}\n");
}

TEST(JsonOutput, ValuesHaveTheirTypes)
{
    const auto text = [](const Field& field) { return command::jsonLine(field); };
    EXPECT_EQ(text({}), "null\n");
    EXPECT_EQ(text(true), "true\n");
    EXPECT_EQ(text(std::int64_t{4294967295}), "4294967295\n");
    EXPECT_EQ(text(command::Seconds(1.2345)), "1.235\n");
    EXPECT_EQ(text(command::Mark{"offline", command::Tone::bad}), "\"offline\"\n");
    EXPECT_EQ(text(command::Flag{false, command::Tone::bad}), "false\n");
    EXPECT_EQ(Json::parse(text(command::Texts{"a", "b,c"})).dump(), R"(["a","b,c"])");
    EXPECT_EQ(Json::parse(text(command::Steps{{"a b", 3, command::Seconds(2)},
                                              {"c", {}, command::Seconds(0)},
                                              {"", {}, command::Seconds(5)}}))
                  .dump(),
              R"([{"command":"a b","seconds":2.0,"result":3},)"
              R"({"command":"c","seconds":0.0,"result":null},{"wait":5.0}])");
}

TEST(JsonOutput, RecordsThatAreNoRowsAreWhole)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "explanations", {});
    json.write(Document::Record{{"rule", "nobody"}, {"warnings", Document::List()}});
    json.finish();
    EXPECT_EQ(Json::parse(output.text())["explanations"].dump(),
              R"([{"rule":"nobody","warnings":[]}])");
}

TEST(JsonOutput, BytesThatAreNotUtf8AreReplaced)
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "devices", {name});
    json.write({"a\xff"
                "b\u00e4\n\x01"});
    json.finish();
    EXPECT_EQ(Json::parse(output.text())["devices"][0]["name"], "a\ufffdb\u00e4\n\x01");
}

TEST(JsonOutput, CharactersOutsideAsciiAndDelAreEscapedAndComeBack)
{
    const std::string text = "\x7f\u0085\u009b\u00e4\u2028\u202e\ufeff\U000e0041";
    EXPECT_EQ(command::jsonLine(text), R"("\u007f\u0085\u009b\u00e4\u2028\u202e\ufeff\udb40\udc41")"
                                       "\n");
    EXPECT_EQ(Json::parse(command::jsonLine(text)), text);
}

} // namespace
