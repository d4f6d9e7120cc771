#include "pdk/zecmn/deadline.h"

#include <gtest/gtest.h>

using koze_pdk_4_4::runner::Deadline;
using namespace std::chrono_literals;

namespace {

TEST(DeadlineTest, PassesOnce)
{
    EXPECT_FALSE(Deadline(1h).passed());
    EXPECT_TRUE(Deadline(0s).passed());
    EXPECT_TRUE(Deadline(-1h).passed());
}

TEST(DeadlineTest, IsATimeoutOfNothingOnceItHasPassed)
{
    EXPECT_EQ(Deadline(0s).timeout(1h), 0);
    EXPECT_EQ(Deadline(-1h).timeout(1h), 0); // not negative, which is for ever
}

TEST(DeadlineTest, IsATimeoutOfWhatIsLeft)
{
    EXPECT_GT(Deadline(1h).timeout(2h), 3500000);
    EXPECT_LE(Deadline(1h).timeout(2h), 3600000);
    EXPECT_EQ(Deadline(1h).timeout(5ms), 5);
}

TEST(DeadlineTest, IsNoTimeoutOfNothingBefore)
{
    int timeout = 0;
    for (int attempt = 0; attempt < 1000 && timeout == 0; ++attempt)
        timeout = Deadline(500us).timeout(1h);
    EXPECT_EQ(timeout, 1);
}

TEST(DeadlineTest, IsATimeOfTheMonotonicClock)
{
    const auto seconds = [](const timespec& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    for (const auto limit : {10000ms, 10250ms, 10500ms, 10750ms}) {
        timespec before{};
        timespec after{};
        clock_gettime(CLOCK_MONOTONIC, &before);
        const timespec time = Deadline(limit).time();
        clock_gettime(CLOCK_MONOTONIC, &after);
        const double length = std::chrono::duration<double>(limit).count();
        EXPECT_GE(seconds(time), seconds(before) + length - 1e-6);
        EXPECT_LE(seconds(time), seconds(after) + length + 1e-6);
        EXPECT_LT(time.tv_nsec, 1000000000);
    }
}

} // namespace
