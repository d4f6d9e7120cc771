#include "pdk/include/czestringtool.h"

#include <gmock/gmock.h>

using koze_pdk_4_4::CZeStringTool;

namespace {

TEST(StringTool, TrimRemovesFromBothEndsOnly)
{
    EXPECT_EQ(CZeStringTool::trim(" \ta b\n", " \n\t\r"), "a b");
}

} // namespace
