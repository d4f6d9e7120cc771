#include <gtest/gtest.h>

#include <new>

#include "pdk/include/czestringtool.h"
#include "tests/support/allocation_probe.h"

using koze_pdk_4_4::CZeStringTool;

namespace {

const std::string text = "a text with memory of its own";

TEST(StringToolWithoutMemory, MakesNoFrameworkString)
{
    const AllocationProbe probe(1);
    EXPECT_THROW(CZeStringTool::str2tstr(text), std::bad_alloc);
    EXPECT_TRUE(probe.failed());
}

TEST(StringToolWithoutMemory, MakesNoStandardString)
{
    const ACE_String_Base<char> framework(text.c_str());
    const AllocationProbe probe(1);
    EXPECT_THROW(CZeStringTool::tstr2str(framework), std::bad_alloc);
    EXPECT_TRUE(probe.failed());
}

TEST(StringToolWithoutMemory, ConvertsNoFrameworkStringThatCouldNotBeMade)
{
    const AllocationProbe probe(1);
    const ACE_String_Base<char> unmade(text.c_str());
    EXPECT_TRUE(probe.failed());
    EXPECT_THROW(CZeStringTool::tstr2str(unmade), std::bad_alloc);
}

} // namespace
