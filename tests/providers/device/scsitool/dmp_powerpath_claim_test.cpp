#include "providers/device/scsitool/dmp_powerpath_claim.h"

#include <gmock/gmock.h>

#include "tests/support/claiming_by.h"
#include "tests/support/naming_example.h"

using testing::ElementsAre;

namespace {

const std::string mebibyte(1 << 20, 'x');

TEST(PowerPathClaim, ListsItsPrefixAnewOnEveryCall)
{
    CDmpPowerPathClaim module;
    module.getDeviceClaimStrings().clear();
    EXPECT_THAT(module.getDeviceClaimStrings(), ElementsAre("/dev/emcpower"));
}

TEST(PowerPathClaim, AllDigitsAtTheEndAreThePartition)
{
    CDmpPowerPathClaim module;
    expectExamples(module, {
                               {"/dev/emcpowerc1", 16, true, "/dev/emcpowerc", 1},
                               {"/dev/emcpowerc12", 16, true, "/dev/emcpowerc", 12},
                               {"/dev/emcpowera11", 16, true, "/dev/emcpowera", 11},
                               {"/dev/emcpoweraa3", 16, true, "/dev/emcpoweraa", 3},
                               {"/dev/emcpowerc0", 16, true, "/dev/emcpowerc", 0},
                               {"/dev/emcpowerc9", 16, true, "/dev/emcpowerc", 9},
                               {"/dev/emcpowerc10", 16, true, "/dev/emcpowerc", 10},
                               {"/dev/emcpowerc007", 16, true, "/dev/emcpowerc", 7},
                               {"/dev/emcpower15", 16, true, "/dev/emcpower", 15},
                               {"/dev/emcpowerp1", 16, true, "/dev/emcpowerp", 1},
                               {"/dev/emcpowerapart2", 16, true, "/dev/emcpowerapart", 2},
                               {"/dev/emcpowerc-1", 16, true, "/dev/emcpowerc-", 1},
                               {"/dev/emcpowera1b2", 16, true, "/dev/emcpowera1b", 2},
                               {"/dev/emcpowerc/x9", 16, true, "/dev/emcpowerc/x", 9},
                           });
}

TEST(PowerPathClaim, NumbersSaturateAsALongAndKeepTheLow32Bits)
{
    CDmpPowerPathClaim module;
    const std::string disk = "/dev/emcpowera";
    expectExamples(module, {
                               {disk + "2147483647", 16, true, disk, 2147483647},
                               {disk + "2147483648", 16, true, disk, 2147483648},
                               {disk + "4294967295", 16, true, disk, 4294967295},
                               {disk + "4294967296", 16, true, disk, 0},
                               {disk + "4294967303", 16, true, disk, 7},
                               {disk + "9223372036854775806", 16, true, disk, 4294967294},
                               {disk + "9223372036854775807", 16, true, disk, 4294967295},
                               {disk + "9223372036854775808", 16, true, disk, 4294967295},
                               {disk + std::string(20, '9'), 16, true, disk, 4294967295},
                               {disk + std::string(100, '0') + "5", 16, true, disk, 5},
                               {disk + std::string(1 << 20, '1'), 16, true, disk, 4294967295},
                           });
}

TEST(PowerPathClaim, ADiskHasTheNumberZero)
{
    CDmpPowerPathClaim module;
    expectExamples(module, {
                               {"/dev/emcpower", 16, false, "/dev/emcpower", 0},
                               {"/dev/emcpowerc", 16, false, "/dev/emcpowerc", 0},
                               {"/dev/emcpowerc1 ", 16, false, "/dev/emcpowerc1 ", 0},
                               {"/dev/emcpowerc1/", 16, false, "/dev/emcpowerc1/", 0},
                               {"/dev/emcpowerc1:", 16, false, "/dev/emcpowerc1:", 0},
                               {"/dev/emcpowerc1\xb2", 16, false, "/dev/emcpowerc1\xb2", 0},
                           });
}

TEST(PowerPathClaim, TheNumberIsWrittenWhateverItWas)
{
    CDmpPowerPathClaim module;
    for (const unsigned int before : {0U, 1U, 4294967295U}) {
        unsigned int number = before;
        module.removePartitionSuffix("/dev/emcpowerc12", number);
        EXPECT_EQ(number, 12U) << before;
    }
}

TEST(PowerPathClaim, TheMarkerCountsAnywhereInThePath)
{
    CDmpPowerPathClaim module;
    expectExamples(module, {
                               {"/tmp/dev/emcpowerc", 16, false, "/tmp/dev/emcpowerc", 0},
                               {"/tmp/dev/emcpowerc1", 16, true, "/tmp/dev/emcpowerc", 1},
                               {"/data-1/dev/emcpowerc1", 16, true, "/data-1/dev/emcpowerc", 1},
                           });
}

TEST(PowerPathClaim, ANameWithoutItsDirectoryIsNotClaimedYetLosesItsNumber)
{
    CDmpPowerPathClaim module;
    expectExamples(module, {
                               {"emcpowerd2", 0, false, "emcpowerd", 2},
                               {"emcpower", 0, false, "emcpower", 0},
                               {"emcpower7", 0, false, "emcpower", 7},
                               {"/emcpowerd2", 0, false, "/emcpowerd", 2},
                               {"dev/emcpowerd2", 0, false, "dev/emcpowerd", 2},
                               {"/dev/mapper/emcpowera3", 0, false, "/dev/mapper/emcpowera", 3},
                           });
}

TEST(PowerPathClaim, PathsOfOthersAreLeftAlone)
{
    CDmpPowerPathClaim module;
    expectExamples(module, {
                               {"", 0, false, "", 7},
                               {"1", 0, false, "1", 7},
                               {"12", 0, false, "12", 7},
                               {"123", 0, false, "123", 7},
                               {"/dev/sdc1", 0, false, "/dev/sdc1", 7},
                               {"/dev/sda10", 0, false, "/dev/sda10", 7},
                               {"/dev/mapper/mpathbp2", 0, false, "/dev/mapper/mpathbp2", 7},
                               {"/dev/emcpowe1", 0, false, "/dev/emcpowe1", 7},
                               {"/dev/mcpowera1", 0, false, "/dev/mcpowera1", 7},
                               {"/dev/emc/powera1", 0, false, "/dev/emc/powera1", 7},
                               {"/dev/EMCPOWERA1", 0, false, "/dev/EMCPOWERA1", 7},
                               {"/dev/nvme0n1p1", 0, false, "/dev/nvme0n1p1", 7},
                               {"/dev/dm-3", 0, false, "/dev/dm-3", 7},
                           });
}

TEST(PowerPathClaim, NamesHoldAnyBytesAndAnyNumberOfThem)
{
    CDmpPowerPathClaim module;
    using namespace std::string_literals;
    const std::string page = "/dev/emcpower" + std::string(4096, 'm');
    const std::string large = "/dev/emcpower" + mebibyte;
    expectExamples(module,
                   {
                       {"/dev/emcpowera\0001"s, 16, true, "/dev/emcpowera\0"s, 1},
                       {"/dev/emcpowera1\0"s, 16, false, "/dev/emcpowera1\0"s, 0},
                       {"\0/dev/emcpowera12"s, 16, true, "\0/dev/emcpowera"s, 12},
                       {"/dev/emcpower\xff\x80" + "1"s, 16, true, "/dev/emcpower\xff\x80", 1},
                       {page + "31", 16, true, page, 31},
                       {large + "31", 16, true, large, 31},
                       {large, 16, false, large, 0},
                   });
}

TEST(PowerPathClaim, AppendsTheSignedNumberToAnyPath)
{
    CDmpPowerPathClaim module;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/emcpowerc", 1), "/dev/emcpowerc1");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/emcpowerc", 12), "/dev/emcpowerc12");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/emcpowerc", 0), "/dev/emcpowerc0");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdc", 1), "/dev/sdc1");
    EXPECT_EQ(module.appendPartitionSuffix("", 3), "3");
    EXPECT_EQ(module.appendPartitionSuffix("a", 9), "a9");
    EXPECT_EQ(module.appendPartitionSuffix("a", 10), "a10");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483647), "a2147483647");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483648), "a-2147483648");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/emcpowerc", 4294967295), "/dev/emcpowerc-1");
    EXPECT_EQ(module.appendPartitionSuffix(mebibyte, 5), mebibyte + "5");
}

TEST(PowerPathClaim, AppendingKeepsEmbeddedNulBytes)
{
    CDmpPowerPathClaim module;
    using namespace std::string_literals;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/emcpower\0b"s, 1), "/dev/emcpower\0b1"s);
}

TEST(PowerPathClaim, ADerivedClassClaimsByItsOwnList)
{
    ClaimingBy<CDmpPowerPathClaim> module({"/dev/power", "/dev/disk"});
    EXPECT_EQ(module.claim("/dev/powera"), CLAIM_SECONDARY);
    EXPECT_EQ(module.claim("/dev/diska"), CLAIM_SECONDARY);
    EXPECT_EQ(module.claim("/dev/emcpowera"), CLAIM_NONE);
}

TEST(PowerPathClaim, ADerivedClassWithoutStringsClaimsNothing)
{
    ClaimingBy<CDmpPowerPathClaim> module({});
    EXPECT_EQ(module.claim("/dev/emcpowera"), CLAIM_NONE);
}

TEST(PowerPathClaim, ADerivedClassMayListAnyBytesAndTheEmptyString)
{
    using namespace std::string_literals;
    ClaimingBy<CDmpPowerPathClaim> nul({"/dev/p\0a"s});
    EXPECT_EQ(nul.claim("/dev/p\0a1"s), CLAIM_SECONDARY);
    EXPECT_EQ(nul.claim("/dev/p\0b1"s), CLAIM_NONE);
    EXPECT_EQ(nul.claim("/dev/power"), CLAIM_NONE);
    ClaimingBy<CDmpPowerPathClaim> empty({""});
    EXPECT_EQ(empty.claim(""), CLAIM_SECONDARY);
}

} // namespace
