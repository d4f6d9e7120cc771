#include "simulated_tools.h"

namespace {

using State = SimulatedTools;

struct Mistake {
    const char* place; ///< of what is wrong, as a pointer into the scenario
    Json value;
    const char* message;
};

TEST_F(State, AMistakeIsNamedWithItsPlace)
{
    const Mistake mistakes[] = {
        {"/array", 1, "array is no field that is known here"},
        {"/about", 1, "about is not a text"},
        {"/arrays", "x", "arrays is not an array"},
        {"/arrays/0", 3, "arrays[0] is not an object"},
        {"/arrays/0/nodes/0/stat", "x", "arrays[0].nodes[0].stat is no field"},
        {"/arrays/0/colour", "x", "arrays[0].colour is no field"},
        {"/arrays/0/name", "", "arrays[0].name is empty or holds white space"},
        {"/arrays/0/nodes/0/name", "a b", "arrays[0].nodes[0].name is empty or holds white space"},
        {"/arrays/0/nodes/0/state", "a\tb", "nodes[0].state is empty or holds white space"},
        {"/arrays/0/nodes/0/paths/1", Json::object(), "nodes[0].paths[1].name is missing"},
        {"/arrays/0/nodes/0/paths/1/type", 1, "nodes[0].paths[1].type is not a text"},
        {"/arrays/0/nodes/0/paths/1/size", 1, "nodes[0].paths[1].size is no field"},
        {"/arrays/0/nodes/0/paths/1/name", "sdb", "there are two paths sdb"},
        {"/arrays/0/nodes/1", {{"name", "arr0_17"}}, "there are two nodes arr0_17"},
        {"/arrays/0/nodes/0/stale", true, "nodes[0].stale is not an object"},
        {"/arrays/0/nodes/0/stale", {{"rescans", 0}}, "stale.rescans is not a whole number from 1"},
        {"/arrays/0/nodes/0/stale", {{"rescan", 2}}, "stale.rescan is no field"},
        {"/arrays/0/nodes/0/stale", {{"removal", 1}}, "stale.removal is neither true nor false"},
        {"/arrays/0/nodes/0/stale",
         {{"paths", {{{"name", "a"}, {"state", "b"}, {"type", "c"}}}}},
         "stale.paths needs a name"},
        {"/empty_table_for_unknown_disk", "yes", "disk is neither true nor false"},
        {"/calls", {{"rm", -1}}, "calls.rm is not a whole number from 0"},
        {"/calls", Json::array(), "calls is not an object"},
    };
    for (const Mistake& mistake : mistakes) {
        Json state = scenario("healthy");
        state[Json::json_pointer(mistake.place)] = mistake.value;
        write(state);
        EXPECT_THAT(nodeOf("sdc"), Fails(78, mistake.message)) << state;
        EXPECT_EQ(textOf(statePath()), state.dump());
    }
}

TEST_F(State, EveryFieldButTheNamesCanBeMissing)
{
    write(Json::parse(R"({"arrays": [{"name": "a"}, {"name": "b", "nodes": [{"name": "n"}]}]})"));
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    write(Json::object());
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
}

TEST_F(State, CountingGoesOnWhereItStands)
{
    Json state = scenario("healthy");
    state["calls"] = {{"rm", 7}, {"getdmpnode", 41}};
    write(state);
    nodeOf("sdc");
    EXPECT_EQ(this->state()["calls"], Json({{"getdmpnode", 42}, {"rm", 7}}));
}

TEST_F(State, NoCountIsTooLargeForTheNextCall)
{
    write(Json{{"calls", {{"rm", 4294967295U}}}});
    EXPECT_THAT(kodisk({"rm", "x"}), Fails(1, "node \"x\""));
    EXPECT_THAT(kodisk({"rm", "x"}), Fails(1, "node \"x\""));
    write(Json{{"calls", {{"rm", 4294967296U}}}});
    EXPECT_THAT(kodisk({"rm", "x"}),
                Fails(78, "calls.rm is not a whole number from 0 to 4294967295"));
}

} // namespace
