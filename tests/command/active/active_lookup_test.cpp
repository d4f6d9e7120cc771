#include "pdk/include/czeexecpipe.h"
#include "scripted_lookup.h"
#include "tests/support/recording_log.h"

namespace {

using koze_pdk_4_4::CZeTraceCallbackSink;
using Row = nlohmann::ordered_json;

TEST_F(ActiveLookupTest, TellsTheActivePathAndHowItWasFound)
{
    tools.answer(nodeQuery, 3).answer(rescan, 0);
    findAtOnce();
    const Row row = lookUp("/dev/sdc");
    EXPECT_EQ(row["name"], "/dev/sdc");
    EXPECT_EQ(row["owner"], "native");
    EXPECT_EQ(row["active"], "/dev/sdf");
    EXPECT_EQ(row["changed"], true);
    EXPECT_EQ(row["warning"], nullptr);
    EXPECT_THAT(outline(row),
                testing::ElementsAre(nodeQuery + std::string(": 3"), "wait",
                                     rescan + std::string(": 0"), nodeQuery + std::string(": 0"),
                                     pathQuery + std::string(": 0")));
}

TEST_F(ActiveLookupTest, ACommandThatCannotRunHasNoResult)
{
    tools.answer({nodeQuery, 0, {}, [] { throw koze_pdk_4_4::EZeExecPipe("no"); }});
    tools.answer(rescan, 0);
    findAtOnce();
    EXPECT_EQ(outline(lookUp("/dev/sdc"))[0], nodeQuery + std::string(": null"));
}

TEST_F(ActiveLookupTest, APathThatIsActiveItselfHasNotChanged)
{
    const Row row = lookUp("/dev/mapper/mpatha");
    EXPECT_EQ(row["owner"], "device-mapper");
    EXPECT_EQ(row["active"], "/dev/mapper/mpatha");
    EXPECT_EQ(row["changed"], false);
    EXPECT_EQ(row["timeline"], Row::array());
    EXPECT_TRUE(tools.events.empty());
}

TEST_F(ActiveLookupTest, AnUnclaimedPathHasNoActiveOne)
{
    const Row row = lookUp("sdc");
    EXPECT_EQ(row["owner"], nullptr);
    EXPECT_EQ(row["active"], nullptr);
    EXPECT_EQ(row["changed"], false);
}

TEST_F(ActiveLookupTest, ANameThatTheToolsWouldMisreadIsNotLookedUp)
{
    for (const bool refresh : {false, true}) {
        const Row row = lookUp("/dev/sdc force=yes", refresh);
        EXPECT_EQ(row["owner"], "native");
        EXPECT_EQ(row["active"], nullptr);
        EXPECT_EQ(row["changed"], false);
        EXPECT_EQ(row["timeline"], Row::array());
        EXPECT_EQ(row["warning"], "not looked up: it holds a space, which separates the arguments "
                                  "of the volume manager's tools");
    }
    EXPECT_TRUE(tools.events.empty());
}

TEST_F(ActiveLookupTest, OtherDriversPathsMayHoldAnything)
{
    EXPECT_EQ(lookUp("/dev/mapper/mpatha b,c")["active"], "/dev/mapper/mpatha b,c");
}

TEST_F(ActiveLookupTest, AnActivePathThatLeavesDevHasAWarning)
{
    findAtOnce("../etc/shadow ENABLED(A) PRIMARY");
    const Row row = lookUp("/dev/sdc");
    EXPECT_EQ(row["active"], "/dev/../etc/shadow");
    EXPECT_EQ(row["changed"], true);
    EXPECT_EQ(row["warning"], "do not use the active path '/dev/../etc/shadow': it leaves /dev");
}

TEST_F(ActiveLookupTest, AnUnchangedPathIsTheCallersOwn)
{
    const std::string path = "/dev/../dev/sdc";
    tools.installed = false;
    EXPECT_EQ(lookUp(path)["warning"], nullptr);
}

TEST_F(ActiveLookupTest, RefreshingRemovesTheNode)
{
    tools.answer(nodeQuery, 0, nodeTable).answer("/usr/sbin/kodisk   rm arr0_17", 0);
    tools.answer("/usr/sbin/kodisk   scandisks ", 0);
    findAtOnce();
    EXPECT_EQ(lookUp("/dev/sdc", true)["active"], "/dev/sdf");
}

TEST_F(ActiveLookupTest, TheUsersSinkGetsTheLinesThatItWants)
{
    std::vector<Line> lines;
    sink = new CZeTraceCallbackSink(3, [&](int level, std::string_view text) {
        lines.push_back({level, std::string(text)});
    });
    findAtOnce();
    lookUp("/dev/sdc");
    EXPECT_THAT(lines,
                testing::ElementsAre(Line{3, std::string("ExecuteCommand command: ") + nodeQuery},
                                     Line{3, std::string("ExecuteCommand command: ") + pathQuery}));
}

TEST_F(ActiveLookupTest, WithoutToolsItIsNotInstalled)
{
    tools.installed = false;
    const Row row = lookUp("/dev/sdc1");
    EXPECT_EQ(row["result"], "not-installed");
    EXPECT_EQ(row["active"], "/dev/sdc1");
}

TEST_F(ActiveLookupTest, APartitionsNumberIsKeptAsItIsWritten)
{
    for (const char* number : {"1", "15", "007", "4294967295", "99999999999999999999"}) {
        findAtOnce();
        const Row row = lookUp(std::string("/dev/sdc") + number);
        EXPECT_EQ(row["active"], std::string("/dev/sdf") + number);
        EXPECT_EQ(row["disk"], "/dev/sdc");
        EXPECT_EQ(row["changed"], true);
    }
}

TEST_F(ActiveLookupTest, APartitionOfTheActiveDiskComesBackAsItWasGiven)
{
    findAtOnce("sdc ENABLED(A) PRIMARY");
    const Row row = lookUp("/dev/sdc007");
    EXPECT_EQ(row["active"], "/dev/sdc007");
    EXPECT_EQ(row["changed"], false);
    EXPECT_EQ(row["result"], "confirmed");
}

TEST_F(ActiveLookupTest, OtherDriversPartitionsAreActiveThemselves)
{
    const Row row = lookUp("/dev/mapper/mpathap1");
    EXPECT_EQ(row["active"], "/dev/mapper/mpathap1");
    EXPECT_EQ(row["disk"], "/dev/mapper/mpatha");
    EXPECT_EQ(row["result"], "not-asked");
}

TEST_F(ActiveLookupTest, AsGivenThePartitionsOwnNameIsAskedAbout)
{
    rules.asGiven = true;
    tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc1", 0, nodeTable);
    tools.answer(pathQuery, 0, pathTable);
    EXPECT_EQ(lookUp("/dev/sdc1")["active"], "/dev/sdf");
}

TEST_F(ActiveLookupTest, ItsStatusTellsWhatItDoes)
{
    tools.answer({nodeQuery, 0, nodeTable, [this] {
                      const auto activity = status.get();
                      ASSERT_TRUE(activity);
                      EXPECT_EQ(activity->path, "/dev/sdc");
                      EXPECT_EQ(activity->command, nodeQuery);
                      EXPECT_FALSE(activity->isWaiting);
                      EXPECT_EQ(activity->attempt, 1);
                  }});
    tools.answer(pathQuery, 0, pathTable);
    lookUp("/dev/sdc");
    EXPECT_FALSE(status.get());
}

TEST_F(ActiveLookupTest, ItsStatusTellsTheAttempt)
{
    int attempt = 0;
    tools.answer(nodeQuery, 3).answer(rescan, 0);
    tools.answer({nodeQuery, 0, nodeTable, [&] { attempt = status.get()->attempt; }});
    tools.answer(pathQuery, 0, pathTable);
    lookUp("/dev/sdc");
    EXPECT_EQ(attempt, 2);
}

} // namespace
