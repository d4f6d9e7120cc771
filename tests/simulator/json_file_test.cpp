#include <fstream>

#include "simulated_tools.h"

namespace {

using JsonFile = SimulatedTools;

/// Arrays nested to that depth.
std::string nested(std::size_t levels)
{
    return std::string(levels, '[') + std::string(levels, ']');
}

TEST_F(JsonFile, WhatIsNestedDeeplyIsRefusedBeforeItIsBuilt)
{
    const std::string records = R"({"commands": [{"command": "kodisk scandisks", "status": 0,
        "output": [], "levels 4 and deeper": )";
    for (const std::size_t levels : {98U, 200'000U}) {
        std::ofstream(folder() / "case.json") << records << nested(levels) << "}]}";
        write(Json{{"replay", "case.json"}});
        EXPECT_THAT(kodisk({"scandisks"}),
                    Fails(78, "/case.json is nested more than 100 levels deep\n"));
        write("{\"about\": " + nested(levels + 2) + "}");
        EXPECT_THAT(kodisk({"scandisks"}),
                    Fails(78, statePath() + " is nested more than 100 levels deep\n"));
    }
}

TEST_F(JsonFile, AHundredLevelsAreRead)
{
    write(R"({"replay": [{"command": "kodisk scandisks", "status": 0, "output": [], "x": )" +
          nested(97) + "}]}");
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_EQ(state()["replayed"], Json({{"kodisk scandisks", 1}}));
}

TEST_F(JsonFile, ANumberThatIsTooLargeIsRefused)
{
    const char* refusal =
        " has a number that is too large: [json.exception.out_of_range.406] number "
        "overflow parsing '1e999'\n";
    std::ofstream(folder() / "case.json") << R"({"commands": [1e999]})";
    write(Json{{"replay", "case.json"}});
    EXPECT_THAT(kodisk({"scandisks"}), Fails(78, "/case.json" + std::string(refusal)));
    write(std::string(R"({"about": 1e999})"));
    EXPECT_THAT(kodisk({"scandisks"}), Fails(78, statePath() + refusal));
}

TEST_F(JsonFile, UnknownFieldsOfARecordingCostNoMoreThanTheirLength)
{
    std::ofstream file(folder() / "case.json");
    file << R"({"commands": [{"command": "kodisk scandisks", "status": 4, "output": ["x"], "y": {)";
    for (int i = 0; i < 200'000; ++i)
        file << '"' << i << "\": 0, ";
    file << R"("z": 0}}]})";
    file.close();
    write(Json{{"replay", "case.json"}});
    EXPECT_EQ(kodisk({"scandisks"}).output, "x\n");
}

} // namespace
