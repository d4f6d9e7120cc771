// Partition numbers are formatted by the library's own bounded formatter, whose result is ignored.
#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_built_in_modules.h"
#include "vstring/Y_strings.h"

using testing::ElementsAre;

namespace {

/// What the formatter was asked for.
struct Request {
    std::size_t size;
    std::string format;
    std::string before; // what the buffer held
};

std::vector<Request> requests;

bool operator==(const Request& a, const Request& b)
{
    return a.size == b.size && a.format == b.format && a.before == b.before;
}

} // namespace

/// Writes nothing, as a formatter that fails.
extern "C" std::int32_t Y_snprintf(char* dst, std::size_t size, const char* format, ...)
{
    requests.push_back({size, format, dst});
    return -1;
}

namespace {

template <class Module>
std::string appended(const std::string& disk)
{
    requests.clear();
    return Module().appendPartitionSuffix(disk, 12);
}

TEST(AppendFormatting, OfDeviceMapperLeavesTheDiskWhenItFails)
{
    EXPECT_EQ(appended<CDmpDeviceMapperClaim>("/dev/mapper/mpathb"), "/dev/mapper/mpathb");
    EXPECT_THAT(requests, ElementsAre(Request{32, "p%d", ""}));
}

TEST(AppendFormatting, OfPowerPathLeavesTheDiskWhenItFails)
{
    EXPECT_EQ(appended<CDmpPowerPathClaim>("/dev/emcpowerc"), "/dev/emcpowerc");
    EXPECT_THAT(requests, ElementsAre(Request{32, "%d", ""}));
}

TEST(AppendFormatting, OfNativePathsGivesNothingWhenItFails)
{
    EXPECT_EQ(appended<CNativePathClaim>("/dev/sdc"), "");
    EXPECT_THAT(requests, ElementsAre(Request{1024, "%s%d", ""}));
}

} // namespace
