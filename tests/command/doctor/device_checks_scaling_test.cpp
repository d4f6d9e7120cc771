// How the work of the checks grows with the machine. Counts calls of memcmp, which compares texts:
// unlike time, their number is the same in each run.
#include "doctor/device_checks.h"

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/command/doctor/fake_machine.h"

namespace {

long comparisons = 0;

} // namespace

extern "C" int memcmp(const void* first, const void* second, std::size_t size)
{
    ++comparisons;
    const auto* a = static_cast<const unsigned char*>(first);
    const auto* b = static_cast<const unsigned char*>(second);
    for (; size > 0 && *a == *b; --size) {
        ++a;
        ++b;
    }
    return size == 0 ? 0 : *a - *b;
}

/// Compilers may call it where only equality counts.
extern "C" int bcmp(const void* first, const void* second, std::size_t size)
{
    return memcmp(first, second, size);
}

namespace {

long comparisonsFor(int devices)
{
    FakeMachine machine;
    for (int number = 0; number < devices / 2; ++number) {
        machine.addDeviceWithNode("sd" + std::to_string(number));
        machine.addMapWithNode("mpath" + std::to_string(number), "mpath-1");
    }
    const std::vector<command::DeviceReading> readings = machine.readings();
    std::size_t findings = 0;
    comparisons = 0;
    const command::Inventory kernel(machine.roots());
    command::checkDevices(kernel, machine.drivers(), readings, {},
                          [&](const command::Finding&) { ++findings; });
    EXPECT_EQ(findings, 4U);
    return comparisons;
}

TEST(DeviceChecksScaling, TenTimesTheDevicesAreTenTimesTheWork)
{
    const long few = comparisonsFor(60);
    EXPECT_GT(few, 60);
    // Somewhat more than ten times, as the maps are sorted.
    EXPECT_LT(comparisonsFor(600), 15 * few);
}

} // namespace
