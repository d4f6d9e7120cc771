#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "tests/support/recording_log.h"

using testing::ElementsAre;

namespace {

TEST(ClaimManager, ADeviceMapperPathBelongsToTheDeviceMapperModule)
{
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* module = nullptr;
    EXPECT_EQ(manager.getClaimModule(module, "/dev/mapper/mpatha"), CLAIM_SECONDARY);
    EXPECT_NE(dynamic_cast<CDmpDeviceMapperClaim*>(module), nullptr);
}

TEST(ClaimManager, AnUnclaimedPathHasNoDiskAndKeepsTheNumber)
{
    CDmpClaimManager manager;
    unsigned int partnum = 7;
    EXPECT_EQ(manager.removePartitionSuffix("/dev/vda1", partnum), "");
    EXPECT_EQ(partnum, 7U);
}

TEST(ClaimManager, PrefixesAreListedLastModuleFirst)
{
    CDmpClaimManager manager;
    EXPECT_THAT(manager.getDeviceClaimStrings(),
                ElementsAre("/dev/mapper/", "/dev/emcpower", "/dev/sd"));
}

} // namespace
