// The trace lines of each operation.
#include "providers/device/scsitool/dmp_powerpath_claim.h"

#include <gmock/gmock.h>

#include "claim_module_trace.h"
#include "tests/support/claiming_by.h"

using testing::ElementsAreArray;

namespace {

constexpr char file[] = "dmp_powerpath_claim.cpp";

const Line claimed{3, "INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY"};

TEST(PowerPathClaim, OneLineTellsOfAClaimHoweverManyStringsMatch)
{
    RecordingLog log;
    ClaimingBy<CDmpPowerPathClaim> module({"/dev", "/dev/power", "power"});
    module.registerTraceLog(log.handle());
    module.claim("/dev/powera");
    EXPECT_THAT(log.takeLines(), ElementsAreArray(Traced("claim", file, claimed)));
}

class PowerPathTrace : public ClaimModuleTrace<CDmpPowerPathClaim> {
protected:
    PowerPathTrace() : ClaimModuleTrace("CDmpPowerPathClaim", file) {}
};

TEST_F(PowerPathTrace, ListingWritesNoLineOfItsOwn)
{
    m_module.getDeviceClaimStrings();
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("getDeviceClaimStrings", file)));
}

TEST_F(PowerPathTrace, AClaimHoldsTheListingAndOneLine)
{
    m_module.claim("/dev/emcpowerc");
    EXPECT_THAT(
        m_log.takeLines(),
        ElementsAreArray(Traced("claim", file, Traced("getDeviceClaimStrings", file), claimed)));
}

TEST_F(PowerPathTrace, NoClaimHoldsTheListingOnly)
{
    m_module.claim("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced("claim", file, Traced("getDeviceClaimStrings", file))));
}

TEST_F(PowerPathTrace, IsPartitionWritesNoLineOfItsOwn)
{
    m_module.isPartition("/dev/emcpowerc1");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file)));
    m_module.isPartition("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file)));
}

TEST_F(PowerPathTrace, AppendingWritesDiskPartitionAndSignedNumber)
{
    m_module.appendPartitionSuffix("/dev/emcpowerc", 12);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(conversion("appendPartitionSuffix", "/dev/emcpowerc",
                                            "/dev/emcpowerc12", "12")));
    m_module.appendPartitionSuffix("/dev/x", 4294967295);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(conversion("appendPartitionSuffix", "/dev/x", "/dev/x-1", "-1")));
}

TEST_F(PowerPathTrace, RemovingWritesDiskPartitionAndSignedNumber)
{
    unsigned int number = 7;
    m_module.removePartitionSuffix("/dev/emcpowerc012", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/emcpowerc", "/dev/emcpowerc012", "12")));
    m_module.removePartitionSuffix("/dev/emcpowerc4294967295", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/emcpowerc", "/dev/emcpowerc4294967295", "-1")));
}

TEST_F(PowerPathTrace, RemovingNothingWritesTheSameLine)
{
    unsigned int number = 7;
    m_module.removePartitionSuffix("/dev/sdc1", number);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(removal("/dev/sdc1", "/dev/sdc1", "7")));
    m_module.removePartitionSuffix("/dev/emcpowerc", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/emcpowerc", "/dev/emcpowerc", "0")));
}

TEST_F(PowerPathTrace, NoNameIsTooLongForALine)
{
    const std::string disk = "/dev/emcpower" + std::string(1 << 20, 'x');
    unsigned int number = 7;
    m_module.removePartitionSuffix(disk + "1", number);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(removal(disk, disk + "1", "1")));
}

} // namespace
