#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>

using koze_pdk_4_4::CZeTraceStderrSink;

namespace {

TEST(TraceSink, WantsItsOwnLevelAndNoneAbove)
{
    const CZeTraceStderrSink sink(3);
    EXPECT_TRUE(sink.wants(3));
    EXPECT_FALSE(sink.wants(6));
}

} // namespace
