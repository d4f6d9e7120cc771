#include "output/json_text.h"

#include <random>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using command::Document;
using command::JsonText;
using Json = nlohmann::ordered_json;

namespace {

std::string lineOf(const Document& document)
{
    JsonText json(JsonText::Layout::line);
    json.add(document);
    return json.text();
}

TEST(JsonText, LevelsAreIndentedOrOnOneLine)
{
    const Document document = Document::Record{{"a", Document::List{1, Document::List{}}},
                                               {"b", Document::Record{}},
                                               {"c", Document::Record{{"d", true}}}};
    JsonText indented(JsonText::Layout::indented);
    indented.add(document);
    EXPECT_EQ(indented.text(), R"({
  "a": [
    1,
    []
  ],
  "b": {},
  "c": {
    "d": true
  }
})");
    EXPECT_EQ(lineOf(document), R"({"a":[1,[]],"b":{},"c":{"d":true}})");
}

TEST(JsonText, GoesOnWhereItWasCleared)
{
    JsonText json(JsonText::Layout::line);
    json.beginRecord();
    json.key("a");
    json.beginList();
    json.add(command::Field("x"));
    EXPECT_EQ(json.text(), R"({"a":["x")");
    json.clear();
    json.add(command::Field("y"));
    json.endList();
    json.endRecord();
    EXPECT_EQ(json.text(), R"(,"y"]})");
}

TEST(JsonText, ATextThatIsNotUtf8HasALosslessMemberBesideIt)
{
    EXPECT_EQ(lineOf(Document::Record{{"name", "a \xff"}, {"disk", "a"}}),
              R"({"name":"a \ufffd","name_raw":"a\\x20\\xff","disk":"a"})");
    EXPECT_EQ(lineOf(Document::Record{{"command", command::Field(command::CommandLine{"\x80"})}}),
              R"({"command":"\ufffd","command_raw":"\\x80"})");
    EXPECT_EQ(lineOf(Document::Record{{"links", command::Field(command::Texts{"\\", "\xc3"})}}),
              R"({"links":["\\","\ufffd"],"links_raw":["\\x5c","\\xc3"]})");
    EXPECT_EQ(lineOf(command::Field(command::Steps{{"\xff", 0, command::Seconds(1)}})),
              R"([{"command":"\ufffd","command_raw":"\\xff","seconds":1.0,"result":0}])");
}

TEST(JsonText, SecondsHaveAtMostThreeDigits)
{
    const auto text = [](double seconds) {
        return lineOf(command::Field(command::Seconds(seconds)));
    };
    EXPECT_EQ(text(0), "0.0");
    EXPECT_EQ(text(10), "10.0");
    EXPECT_EQ(text(0.0004), "0.0");
    EXPECT_EQ(text(1.25), "1.25");
    EXPECT_EQ(text(600.0017), "600.002");
}

/// Bytes at the borders of UTF-8's ranges, more often than by chance.
std::string randomText(std::mt19937& random)
{
    constexpr unsigned char borders[] = {0x00, 0x1f, 0x22, 0x5c, 0x7e, 0x7f, 0x80, 0x8f, 0x90,
                                         0x9f, 0xa0, 0xbf, 0xc1, 0xc2, 0xdf, 0xe0, 0xe1, 0xec,
                                         0xed, 0xee, 0xef, 0xf0, 0xf1, 0xf3, 0xf4, 0xf5, 0xff};
    std::string text;
    for (auto length = random() % 12; length > 0; --length)
        text += static_cast<char>(random() % 4 == 0 ? random() % 256
                                                    : borders[random() % sizeof borders]);
    return text;
}

TEST(JsonText, RandomBytesAreWrittenAsAnotherWriterDoes)
{
    std::mt19937 random(4711);
    for (int i = 0; i < 50'000; ++i) {
        const std::string text = randomText(random);
        ASSERT_EQ(lineOf(text), Json(text).dump(-1, ' ', true, Json::error_handler_t::replace));
    }
}

} // namespace
