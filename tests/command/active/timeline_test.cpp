#include "active/timeline.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using command::Timeline;
using Kind = command::TraceEvent::Kind;

/// A timeline whose lines come at times that the test chooses.
class TimelineTest : public testing::Test {
protected:
    void take(std::chrono::milliseconds time, Kind kind, std::optional<int> result = {})
    {
        timeline.take({kind, kind == Kind::toolStarts ? "tool" : "", result, {}},
                      Timeline::Clock::time_point(time));
    }

    const Timeline::Step& step(std::size_t number) const { return timeline.steps().at(number); }

    Timeline timeline;
};

TEST_F(TimelineTest, ACommandLastsUntilItsEnd)
{
    take(1s, Kind::other);
    take(2s, Kind::toolStarts);
    take(4s, Kind::other);
    take(5s, Kind::toolEnds);
    take(9s, Kind::other);
    ASSERT_EQ(timeline.steps().size(), 1U);
    EXPECT_EQ(step(0).command, "tool");
    EXPECT_EQ(step(0).duration, 3s);
    EXPECT_EQ(step(0).result, 0);
    EXPECT_FALSE(step(0).isWait());
}

TEST_F(TimelineTest, AFailureHasTheRunnersNumber)
{
    take(0s, Kind::toolStarts);
    take(1s, Kind::toolFails, 1009);
    take(1s, Kind::toolEnds);
    EXPECT_EQ(step(0).result, 1009);
}

TEST_F(TimelineTest, ACommandThatCannotRunHasNoResult)
{
    take(0s, Kind::toolStarts);
    take(1s, Kind::toolCannotRun);
    take(1s, Kind::toolEnds);
    EXPECT_EQ(step(0).result, std::nullopt);
}

TEST_F(TimelineTest, AWaitEndsWithTheNextLine)
{
    take(1s, Kind::waitStarts);
    take(6s, Kind::other);
    take(7s, Kind::other);
    ASSERT_EQ(timeline.steps().size(), 1U);
    EXPECT_TRUE(step(0).isWait());
    EXPECT_EQ(step(0).duration, 5s);
}

TEST_F(TimelineTest, AWaitCanEndWithACommand)
{
    take(1s, Kind::waitStarts);
    take(6s, Kind::toolStarts);
    take(8s, Kind::toolEnds);
    EXPECT_EQ(step(0).duration, 5s);
    EXPECT_EQ(step(1).duration, 2s);
}

TEST_F(TimelineTest, TheCurrentStepIsTheOneThatHasNotEnded)
{
    EXPECT_EQ(timeline.current(), nullptr);
    take(0s, Kind::toolStarts);
    ASSERT_NE(timeline.current(), nullptr);
    EXPECT_EQ(timeline.current()->command, "tool");
    take(1s, Kind::toolEnds);
    EXPECT_EQ(timeline.current(), nullptr);
    take(1s, Kind::waitStarts);
    ASSERT_NE(timeline.current(), nullptr);
    EXPECT_TRUE(timeline.current()->isWait());
    EXPECT_EQ(timeline.current()->begin, Timeline::Clock::time_point(1s));
}

TEST_F(TimelineTest, EachWaitEndsAnAttempt)
{
    EXPECT_EQ(timeline.attempt(), 1);
    take(1s, Kind::waitStarts);
    EXPECT_EQ(timeline.attempt(), 1);
    take(2s, Kind::other);
    EXPECT_EQ(timeline.attempt(), 2);
}

TEST_F(TimelineTest, EndsWithoutABeginningAreLeftAlone)
{
    take(1s, Kind::toolEnds);
    take(1s, Kind::toolFails, 3);
    EXPECT_TRUE(timeline.steps().empty());
}

} // namespace
