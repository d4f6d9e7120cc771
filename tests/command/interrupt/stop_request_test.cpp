#include "interrupt/stop_request.h"

#include <gtest/gtest.h>

namespace {

using command::Interrupted;
using command::StopReason;
using command::StopRequest;

TEST(StopRequest, WithoutARequestEverythingGoesOn)
{
    StopRequest stop;
    EXPECT_FALSE(stop.isRequested());
    EXPECT_EQ(stop.reason(), StopReason::none);
    EXPECT_NO_THROW(stop.check());
    EXPECT_NO_THROW(stop.beginTool());
}

TEST(StopRequest, ToolsCountWhileTheyRun)
{
    StopRequest stop;
    stop.beginTool();
    stop.beginTool();
    stop.endTool();
    EXPECT_TRUE(stop.toolsRun());
    stop.endTool();
    EXPECT_FALSE(stop.toolsRun());
}

TEST(StopRequest, AfterTheRequestNoToolStarts)
{
    StopRequest stop;
    for (const StopReason reason : {StopReason::interrupt, StopReason::timeLimit}) {
        stop.request(reason);
        EXPECT_TRUE(stop.isRequested());
        EXPECT_EQ(stop.reason(), reason);
        EXPECT_THROW(stop.check(), Interrupted);
        EXPECT_THROW(stop.beginTool(), Interrupted);
        EXPECT_FALSE(stop.toolsRun());
    }
}

} // namespace
