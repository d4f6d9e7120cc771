#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/support/built_in_modules.h"
#include "tests/support/names_model.h"
#include "tests/support/naming_example.h"

static_assert(builtInModules == MODULE_HEADERS, "a claim module is not in dmp_built_in_modules.h");

namespace {

const std::string mebibyte(1 << 20, 'x');

/// Whether `device` belongs to a module of this class.
template <class Module>
bool owns(CDmpClaimManager& manager, const std::string& device)
{
    CDmpDeviceClaimBase* module = nullptr;
    manager.getClaimModule(module, device);
    return dynamic_cast<Module*>(module) != nullptr;
}

TEST(ClaimManager, APathBelongsToTheModuleOfItsDriver)
{
    CDmpClaimManager manager;
    EXPECT_TRUE(owns<CNativePathClaim>(manager, "/dev/sdc"));
    EXPECT_TRUE(owns<CDmpPowerPathClaim>(manager, "/dev/emcpowerc"));
    EXPECT_TRUE(owns<CDmpDeviceMapperClaim>(manager, "/dev/mapper/mpatha"));
}

TEST(ClaimManager, AMultipathDriverWinsOverThePlainDiskDriver)
{
    CDmpClaimManager manager;
    EXPECT_TRUE(owns<CDmpDeviceMapperClaim>(manager, "/dev/mapper/dev/sdc"));
    EXPECT_TRUE(owns<CDmpPowerPathClaim>(manager, "/dev/emcpower/dev/sdc"));
    EXPECT_EQ(manager.claim("/dev/mapper/dev/sdc"), CLAIM_SECONDARY);
}

TEST(ClaimManager, PowerPathWinsOverTheDeviceMapper)
{
    CDmpClaimManager manager;
    EXPECT_TRUE(owns<CDmpPowerPathClaim>(manager, "/dev/mapper/dev/emcpowera"));
}

TEST(ClaimManager, ALogicalVolumeOnADiskPathBelongsToTheDiskDriver)
{
    CDmpClaimManager manager;
    EXPECT_TRUE(owns<CNativePathClaim>(manager, "/dev/mapper/dev/sdx-1"));
}

TEST(ClaimManager, AnswersAsTheOwningModuleDoes)
{
    CDmpClaimManager manager;
    expectExamples(manager, {
                                {"/dev/sdc", 2, false, "/dev/sdc", 7},
                                {"/dev/sda10", 2, true, "/dev/sda", 10},
                                {"/dev/sdp1", 2, true, "/dev/sdp", 1},
                                {"/dev/mapper/mpatha", 16, false, "/dev/mapper/mpatha", 0},
                                {"/dev/mapper/mpathbp2", 16, true, "/dev/mapper/mpathb", 7},
                                {"/dev/mapper/mpathbp12", 16, false, "/dev/mapper/mpathbp12", 0},
                                {"/dev/mapper/mpath23", 16, false, "/dev/mapper/mpath23", 0},
                                {"/dev/emcpowerc", 16, false, "/dev/emcpowerc", 0},
                                {"/dev/emcpowera11", 16, true, "/dev/emcpowera", 11},
                                {"/dev/sd" + mebibyte + "12", 2, true, "/dev/sd" + mebibyte, 12},
                            });
}

TEST(ClaimManager, AnUnclaimedPathIsNoPartitionAndHasNoDisk)
{
    CDmpClaimManager manager;
    using namespace std::string_literals;
    expectExamples(manager, {
                                {"", 0, false, "", 7},
                                {"1", 0, false, "", 7},
                                {"12", 0, false, "", 7},
                                {"123", 0, false, "", 7},
                                {"/dev/sd", 0, false, "", 7},
                                {"/dev/mapper/vg-lvp1", 0, false, "", 7},
                                {"/dev/mapperp1", 0, false, "", 7},
                                {"emcpowerd2", 0, false, "", 7},
                                {"/dev/\0sda1"s, 0, false, "", 7},
                                {mebibyte + "1", 0, false, "", 7},
                            });
}

TEST(ClaimManager, ANameThatNoModuleKnowsIsUnclaimed)
{
    CDmpClaimManager manager;
    for (const std::string& name : model::unclaimed)
        expectExamples(manager, {{name, 0, false, "", 7}});
}

TEST(ClaimManager, AppendsAsTheOwningModuleDoes)
{
    CDmpClaimManager manager;
    EXPECT_EQ(manager.appendPartitionSuffix("/dev/sdc", 12), "/dev/sdc12");
    EXPECT_EQ(manager.appendPartitionSuffix("/dev/mapper/mpath2", 3), "/dev/mapper/mpath2p3");
    EXPECT_EQ(manager.appendPartitionSuffix("/dev/emcpowera", 4294967295), "/dev/emcpowera-1");
}

TEST(ClaimManager, AnUnclaimedDiskHasNoPartitions)
{
    CDmpClaimManager manager;
    EXPECT_EQ(manager.appendPartitionSuffix("/dev/vda", 1), "");
    EXPECT_EQ(manager.appendPartitionSuffix("/dev/mapper/vg-lv", 1), "");
    EXPECT_EQ(manager.appendPartitionSuffix("", 1), "");
}

TEST(ClaimManager, AnUnclaimedPathLeavesTheModuleArgumentAlone)
{
    CDmpClaimManager manager;
    CNativePathClaim other;
    CDmpDeviceClaimBase* module = &other;
    EXPECT_EQ(manager.getClaimModule(module, "/dev/vda"), CLAIM_NONE);
    EXPECT_EQ(module, &other);
}

TEST(ClaimManager, PrefixesAreListedLastModuleFirst)
{
    CDmpClaimManager manager;
    EXPECT_EQ(manager.getDeviceClaimStrings(), model::prefixes);
}

} // namespace
