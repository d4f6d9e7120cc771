#include "multipath/ending_text.h"

#include <gtest/gtest.h>

#include "pdk/include/czeexecpipe.h"

namespace {

using command::endingText;
using koze_pdk_4_4::CZeExecPipeBase;

constexpr char words[] = "ERROR no daemon";

TEST(EndingText, AStatusComesWithWhatTheToolPrinted)
{
    EXPECT_EQ(endingText(3, 30, words), "ended with status 3, 'ERROR no daemon'");
    EXPECT_EQ(endingText(3, 30, ""), "ended with status 3");
}

TEST(EndingText, WhatAKilledToolPrintedIsLeftOut)
{
    EXPECT_EQ(endingText(CZeExecPipeBase::killedBySignal + 9, 30, words), "was ended by signal 9");
    EXPECT_EQ(endingText(CZeExecPipeBase::boundExceeded, 30, words), "printed too much");
    EXPECT_EQ(endingText(CZeExecPipeBase::statusUnknown, 30, words),
              "ended, and its status was lost");
}

TEST(EndingText, ADeadlineIsToldInSeconds)
{
    EXPECT_EQ(endingText(CZeExecPipeBase::deadlinePassed, 30, words), "took more than 30 seconds");
    EXPECT_EQ(endingText(CZeExecPipeBase::deadlinePassed, 600, ""), "took more than 600 seconds");
}

} // namespace
