#include "simulated_tools.h"

namespace {

class Tables : public SimulatedTools {
protected:
    static Json path(const std::string& name, const char* state, const char* type)
    {
        return {{"name", name}, {"state", state}, {"type", type}};
    }

    void useNode(const Json& node) const
    {
        write({{"arrays", {{{"name", "arr0"}, {"nodes", Json::array({node})}}}}});
    }
};

TEST_F(Tables, EachColumnIsAsWideAsItsWidestCell)
{
    const std::string name(40, 'x');
    useNode({{"name", name},
             {"state", "PARTLY_DISABLED"},
             {"paths", {path("sdb", "ENABLED", "PRIMARY")}}});
    EXPECT_THAT(nodeOf("sdb"),
                Succeeds("NAME" + std::string(40, ' ') + "STATE              GROUP    PATHS\n" +
                         std::string(77, '=') + "\n" + name +
                         "    PARTLY_DISABLED    arr0     1\n"));
}

TEST_F(Tables, TheRuleIsAsLongAsTheLongestLine)
{
    useNode({{"name", "n"},
             {"paths",
              {{{"name", "sdb"},
                {"state", "ENABLED"},
                {"type", "PRIMARY"},
                {"controller", "controller7"}}}}});
    EXPECT_THAT(pathsOf("n"), Succeeds("NAME    STATE      TYPE       CTLR\n"
                                       "=========================================\n"
                                       "sdb     ENABLED    PRIMARY    controller7\n"));
}

TEST_F(Tables, PathsKeepTheOrderOfTheStateFile)
{
    useNode({{"name", "n"},
             {"paths",
              {path("sdd", "ENABLED", "SECONDARY"), path("sdb", "DISABLED", "PRIMARY"),
               path("sdc", "ENABLED(A)", "PRIMARY")}}});
    EXPECT_THAT(pathsOf("n"), Succeeds("NAME    STATE         TYPE         CTLR\n"
                                       "=======================================\n"
                                       "sdd     ENABLED       SECONDARY    c0\n"
                                       "sdb     DISABLED      PRIMARY      c0\n"
                                       "sdc     ENABLED(A)    PRIMARY      c0\n"));
}

} // namespace
