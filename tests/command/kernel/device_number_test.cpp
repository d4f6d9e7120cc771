#include "kernel/device_number.h"

#include <gmock/gmock.h>

using namespace command;

namespace {

TEST(DeviceNumberText, IsReadAsItIsWritten)
{
    for (const char* text : {"8:16", "0:0", "259:4294967295"})
        EXPECT_EQ(parseDeviceNumber(text).value().text(), text);
}

TEST(DeviceNumberText, OfNearMissesIsNothing)
{
    for (const char* text :
         {"", ":", "8", "8:", ":16", "8:16:1", " 8:16", "8:-1", "8:4294967296", "2:0:0:1", "a:b"})
        EXPECT_EQ(parseDeviceNumber(text), std::nullopt) << text;
}

} // namespace
