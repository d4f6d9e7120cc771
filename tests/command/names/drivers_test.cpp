#include "names/drivers.h"

#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_built_in_modules.h"

namespace {

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
