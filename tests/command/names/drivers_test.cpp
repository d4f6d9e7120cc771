#include "names/drivers.h"

#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_built_in_modules.h"

namespace {

using command::DeviceKind;
using command::Driver;
using command::driverOf;
using command::drivers;
using command::makeModules;

TEST(Drivers, HaveTheNamesThatUsersAndTheKernelKnow)
{
    std::vector<std::pair<std::string, std::string>> names;
    for (const Driver& driver : drivers())
        names.emplace_back(driver.name, driver.kernelName);
    EXPECT_THAT(names, testing::ElementsAre(testing::Pair("native", "sd"),
                                            testing::Pair("powerpath", "emcpower"),
                                            testing::Pair("device-mapper", "device-mapper")));
}

TEST(Drivers, OwnDevicesOfTheirKinds)
{
    EXPECT_STREQ(driverOf(DeviceKind::disk)->name, "native");
    EXPECT_STREQ(driverOf(DeviceKind::powerPath)->name, "powerpath");
    EXPECT_STREQ(driverOf(DeviceKind::multipath)->name, "device-mapper");
    EXPECT_STREQ(driverOf(DeviceKind::multipathPartition)->name, "device-mapper");
    for (const DeviceKind kind : {DeviceKind::nvme, DeviceKind::map, DeviceKind::partition})
        EXPECT_EQ(driverOf(kind), nullptr);
}

TEST(Drivers, AreThoseOfTheModulesThatAManagerAsks)
{
    // The manager lists the last module's strings first.
    std::vector<std::string> strings;
    for (const command::Module& module : makeModules({})) {
        const std::vector<std::string> own = module.claims->getDeviceClaimStrings();
        strings.insert(strings.begin(), own.begin(), own.end());
    }
    EXPECT_EQ(strings, CDmpClaimManager().getDeviceClaimStrings());
}

TEST(Drivers, EachKnowsItsModule)
{
    for (const command::Module& module : makeModules({}))
        EXPECT_EQ(driverOf(module.claims.get()), module.driver);
    EXPECT_EQ(driverOf(nullptr), nullptr);
    EXPECT_STREQ(driverOf(std::make_unique<CNativePathClaim>().get())->name, "native");
}

} // namespace
