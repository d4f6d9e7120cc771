#include "tests/support/json.h"

#include <exception>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

TEST(Json, AParsedTextIsPrintedAgain)
{
    for (const char* text : {"null", "true", "false", "-7", "4294967296", "1.5", "2.0",
                             R"("a\"b\\\n\u0001")", "[]", "{}", R"([1,[null],{"b":{},"a":[]}])"}) {
        EXPECT_EQ(Json::parse(text).dump(), text);
    }
}

TEST(Json, ATextThatIsNoJsonIsRefused)
{
    for (const char* text : {"", "{", "[1,]", "nul", "{} x"}) {
        EXPECT_FALSE(Json::accept(text)) << text;
        EXPECT_THROW(Json::parse(text), std::exception) << text;
    }
    EXPECT_TRUE(Json::accept("{}"));
}

TEST(Json, ValuesAreEqualToThemselvesOnly)
{
    const std::vector<Json> values{nullptr,
                                   false,
                                   true,
                                   0,
                                   1,
                                   1.5,
                                   "",
                                   "a",
                                   Json::array(),
                                   Json::array({1}),
                                   Json::array({1, 2}),
                                   Json::object(),
                                   {{"a", 1}},
                                   {{"a", 2}},
                                   {{"b", 1}},
                                   {{"a", 1}, {"b", 1}},
                                   {{"b", 1}, {"a", 1}}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < values.size(); ++j)
            EXPECT_EQ(values[i] == values[j], i == j) << values[i] << ' ' << values[j];
    }
    EXPECT_EQ(Json(2), 2.0);
}

TEST(Json, BracesMakeAnObjectOfPairsAndAnArrayOfOtherValues)
{
    EXPECT_EQ(Json({{"a", 1}, {"b", {{"c", {"x", "y", "z"}}}}}).dump(),
              R"({"a":1,"b":{"c":["x","y","z"]}})");
    EXPECT_EQ(Json({1, "a", nullptr}).dump(), R"([1,"a",null])");
    EXPECT_EQ(Json::array({{{"a", 1}}}).dump(), R"([{"a":1}])");
    EXPECT_EQ(Json(std::vector<std::string>{"a", "b"}).dump(), R"(["a","b"])");
}

TEST(Json, MembersAndElementsAreReadAddedAndReplaced)
{
    Json value;
    value["list"].push_back(1);
    value["list"].push_back("a");
    value["list"][0] = true;
    value["other"] = {{"a", 1.5}};
    EXPECT_EQ(value.dump(), R"({"list":[true,"a"],"other":{"a":1.5}})");
    EXPECT_EQ(value["list"][1].text(), "a");
    EXPECT_EQ(value["other"]["a"].number(), 1.5);
    EXPECT_EQ(value.names(), std::vector<std::string>({"list", "other"}));
    EXPECT_EQ(value.size(), 2U);
}

TEST(Json, WhatAValueIsNotIsRefused)
{
    const Json value{{"a", "x"}};
    EXPECT_THROW(value["b"], std::out_of_range);
    EXPECT_THROW(value[1], std::out_of_range);
    EXPECT_THROW(value["a"].number(), std::runtime_error);
    EXPECT_THROW(Json(1).text(), std::runtime_error);
    EXPECT_THROW(Json("x").push_back(1), std::runtime_error);
}

} // namespace
