// Lookups that an interrupt, the time limit or the number of attempts ends.
#include "scripted_lookup.h"

namespace {

using command::Interrupted;
using command::StopReason;
using Row = nlohmann::ordered_json;

TEST_F(ActiveLookupTest, AfterTheRequestToStopNoToolStarts)
{
    stop.request();
    EXPECT_THROW(lookUp("/dev/sdc"), Interrupted);
    EXPECT_TRUE(tools.events.empty());
    EXPECT_FALSE(stop.toolsRun());
}

TEST_F(ActiveLookupTest, TheRequestToStopEndsItAfterTheToolThatRuns)
{
    tools.answer({nodeQuery, 1015, {}, [this] {
                      EXPECT_TRUE(stop.toolsRun());
                      stop.request();
                  }});
    EXPECT_THROW(lookUp("/dev/sdc"), Interrupted);
    EXPECT_FALSE(stop.toolsRun());
    EXPECT_EQ(tools.liveRunners, 0);
    EXPECT_EQ(tools.events.back(), nodeQuery);
}

TEST_F(ActiveLookupTest, TheTimeLimitIsAnOutcome)
{
    tools.answer({nodeQuery, 1015, {}, [this] { stop.request(StopReason::timeLimit); }});
    const Row row = lookUp("/dev/sdc2");
    EXPECT_EQ(row["result"], "timed-out");
    EXPECT_EQ(row["reason"], "the time limit passed during kodmpadm getdmpnode");
    EXPECT_EQ(row["active"], "/dev/sdc2");
    EXPECT_EQ(row["disk"], "/dev/sdc");
    EXPECT_THAT(outline(row), testing::ElementsAre(nodeQuery + std::string(": 1015")));
    EXPECT_EQ(tools.liveRunners, 0);
}

/// A sink that calls `act` for each line that begins with `beginning`.
koze_pdk_4_4::CZeTraceSinkHandle sinkThat(std::string_view beginning, std::function<void()> act)
{
    return new koze_pdk_4_4::CZeTraceCallbackSink(
        koze_pdk_4_4::CZeTraceSink::everything,
        [beginning, act = std::move(act)](int, std::string_view text) {
            if (text.substr(0, beginning.size()) == beginning)
                act();
        });
}

TEST_F(ActiveLookupTest, TheTimeLimitMayPassBeforeAPause)
{
    tools.answer(nodeQuery, 3);
    sink = sinkThat("Obtaining dmp nodes failed.", [this] { stop.request(StopReason::timeLimit); });
    EXPECT_EQ(lookUp("/dev/sdc")["reason"], "the time limit passed in a pause");
    EXPECT_EQ(tools.events.back(), nodeQuery);
}

TEST_F(ActiveLookupTest, ARequestToStopThatComesAsAToolStartsKeepsItFromStarting)
{
    sink = sinkThat("ExecuteCommand command: ", [this] { stop.request(); });
    EXPECT_THROW(lookUp("/dev/sdc"), Interrupted);
    EXPECT_FALSE(stop.toolsRun());
    for (const std::string& event : tools.events)
        EXPECT_NE(event, nodeQuery);
}

TEST_F(ActiveLookupTest, AToolRunsNoMoreWhenItsEndCannotBeTold)
{
    findAtOnce();
    sink = sinkThat("Exiting Function executeCommand ", [] { throw std::bad_alloc(); });
    lookUp("/dev/sdc");
    EXPECT_FALSE(stop.toolsRun());
}

TEST_F(ActiveLookupTest, AfterTheTimeLimitNoToolStarts)
{
    stop.request(StopReason::timeLimit);
    const Row row = lookUp("/dev/sdc");
    EXPECT_EQ(row["result"], "timed-out");
    EXPECT_EQ(row["owner"], "native");
    EXPECT_EQ(lookUp("/dev/mapper/mpatha")["result"], "not-asked");
    EXPECT_EQ(lookUp("sdc")["result"], "not-claimed");
    EXPECT_TRUE(tools.events.empty());
}

TEST_F(ActiveLookupTest, APauseThatTheTimeLimitDoesNotAllowIsNotBegun)
{
    rules.limit = command::Timeline::Clock::now() + std::chrono::seconds(5);
    tools.answer(nodeQuery, 3);
    EXPECT_EQ(lookUp("/dev/sdc")["result"], "tool-failed");
    rules.limit = *rules.limit + std::chrono::hours(1);
    tools.answer(nodeQuery, 3).answer(rescan, 0);
    findAtOnce();
    EXPECT_EQ(lookUp("/dev/sdc")["result"], "confirmed");
}

TEST_F(ActiveLookupTest, AfterTheLastAttemptThereIsNoPause)
{
    rules.tries = 2;
    tools.answer(nodeQuery, 3).answer(rescan, 0).answer(nodeQuery, 3);
    const Row row = lookUp("/dev/sdc");
    EXPECT_EQ(row["active"], "/dev/sdc");
    EXPECT_EQ(row["reason"], "kodmpadm getdmpnode ended with status 3 (2 attempts)");
    EXPECT_EQ(row["timeline"].size(), 4U);
}

TEST_F(ActiveLookupTest, ByItselfTheLibraryPausesAfterTheLastAttemptToo)
{
    for (int attempt = 0; attempt < 4; ++attempt)
        tools.answer(nodeQuery, 3).answer(rescan, 0);
    EXPECT_EQ(lookUp("/dev/sdc")["timeline"].size(), 12U);
}

TEST_F(ActiveLookupTest, NoLineEndsItWhileTheToolRuns)
{
    tools.answer({nodeQuery, 0, nodeTable, [this] {
                      stop.request();
                      // The runner writes its own lines in the same way.
                      koze_pdk_4_4::CZeTraceLog* log = tools.runnerLog;
                      EXPECT_NO_THROW(log->trace(6, "Command took 1 ms."));
                  }});
    EXPECT_THROW(lookUp("/dev/sdc"), Interrupted);
}

TEST_F(ActiveLookupTest, AToolThatEndsInAnExceptionRunsNoMore)
{
    tools.answer({nodeQuery, 0, {}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(lookUp("/dev/sdc"), std::bad_alloc);
    EXPECT_FALSE(stop.toolsRun());
}

} // namespace
