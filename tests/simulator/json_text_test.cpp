#include "simulated_tools.h"

namespace {

using JsonText = SimulatedTools;

TEST_F(JsonText, WhatFitsIntoALineOf100StandsOnOne)
{
    const std::string about(67, 'x');
    write(Json{{"about", about}});
    kodisk({"rm", "x"});
    EXPECT_EQ(fileText(statePath()), "{\"about\": \"" + about + "\", \"calls\": {\"rm\": 1}}\n");
}

TEST_F(JsonText, WhatIsLongerGetsALineForEachElement)
{
    const std::string about(68, 'x');
    write(Json{{"about", about}});
    kodisk({"rm", "x"});
    EXPECT_EQ(fileText(statePath()),
              "{\n  \"about\": \"" + about + "\",\n  \"calls\": {\"rm\": 1}\n}\n");
}

TEST_F(JsonText, WhatIsWrittenByHandKeepsItsFormAndOrder)
{
    for (const auto& file : std::filesystem::directory_iterator(scenarios())) {
        std::string before = fileText(file.path());
        write(before);
        kodisk({"scandisks", "device=none"});
        before.erase(before.rfind("\n}"));
        EXPECT_THAT(fileText(statePath()), testing::StartsWith(before + ",\n  \"calls\": {"))
            << file;
    }
}

} // namespace
