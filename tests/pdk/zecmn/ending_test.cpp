#include "pdk/zecmn/ending.h"

#include <csignal>

#include <gtest/gtest.h>

using koze_pdk_4_4::runner::Ending;
using koze_pdk_4_4::runner::endingOf;
using koze_pdk_4_4::runner::resultOf;

namespace {

TEST(Ending, EachHasItsNumber)
{
    EXPECT_EQ(resultOf({Ending::Kind::exited, 0}), 0);
    EXPECT_EQ(resultOf({Ending::Kind::exited, 255}), 255);
    EXPECT_EQ(resultOf({Ending::Kind::killed, SIGKILL}), 1009);
    EXPECT_EQ(resultOf({Ending::Kind::deadlinePassed}), 1100);
    EXPECT_EQ(resultOf({Ending::Kind::boundExceeded}), 1101);
    EXPECT_EQ(resultOf({Ending::Kind::statusUnknown}), 1102);
}

TEST(Ending, EachNumberIsReadBack)
{
    for (const int result : {0, 1, 255, 1001, 1009, 1064, 1100, 1101, 1102})
        EXPECT_EQ(resultOf(endingOf(result)), result);
    EXPECT_EQ(endingOf(7).kind, Ending::Kind::exited);
    EXPECT_EQ(endingOf(1015).kind, Ending::Kind::killed);
    EXPECT_EQ(endingOf(1015).number, SIGTERM);
    EXPECT_EQ(endingOf(1100).kind, Ending::Kind::deadlinePassed);
}

} // namespace
