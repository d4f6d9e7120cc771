#include "pdk/include/czesmartptr.h"

#include <gtest/gtest.h>

#include "pdk/include/czetracelog.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace {

TEST(SmartPtr, ReleasingAnEmptyHandleReturnsMinusOne)
{
    CZeTraceLogHandle handle;
    EXPECT_EQ(handle.release(), -1);
}

} // namespace
