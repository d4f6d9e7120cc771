#include "simulated_tools.h"

namespace {

using JsonText = SimulatedTools;

TEST_F(JsonText, WhatFitsIntoALineOf100StandsOnOne)
{
    const std::string about(67, 'x');
    write(Json{{"about", about}});
    kodisk({"rm", "x"});
    EXPECT_EQ(textOf(statePath()), "{\"about\": \"" + about + "\", \"calls\": {\"rm\": 1}}\n");
}

TEST_F(JsonText, WhatIsLongerGetsALineForEachElement)
{
    const std::string about(68, 'x');
    write(Json{{"about", about}});
    kodisk({"rm", "x"});
    EXPECT_EQ(textOf(statePath()),
              "{\n  \"about\": \"" + about + "\",\n  \"calls\": {\"rm\": 1}\n}\n");
}

TEST_F(JsonText, TheIndentationCounts)
{
    const std::pair<std::size_t, const char*> beginnings[] = {{84, "{\n  \"arrays\": [{"},
                                                              {85, "{\n  \"arrays\": [\n"}};
    for (const auto& [length, beginning] : beginnings) {
        write(Json{{"arrays", {{{"name", std::string(length, 'x')}}}}});
        kodisk({"rm", "x"});
        EXPECT_THAT(textOf(statePath()), testing::StartsWith(beginning));
    }
}

TEST_F(JsonText, WhatIsWrittenByHandKeepsItsFormAndOrder)
{
    for (const auto& file : std::filesystem::directory_iterator(scenarios())) {
        std::string before = textOf(file.path());
        write(before);
        kodisk({"scandisks", "device=none"});
        before.erase(before.rfind("\n}"));
        EXPECT_THAT(textOf(statePath()), testing::StartsWith(before + ",\n  \"calls\": {")) << file;
    }
}

} // namespace
