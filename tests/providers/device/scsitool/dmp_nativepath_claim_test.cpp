#include "providers/device/scsitool/dmp_nativepath_claim.h"

#include <gmock/gmock.h>

#include "claim_module_trace.h"
#include "tests/support/claiming_by.h"
#include "tests/support/naming_example.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr char file[] = "dmp_nativepath_claim.cpp";
const std::string mebibyte(1 << 20, 'x');

TEST(NativePathClaim, ListsItsPrefixAnewOnEveryCall)
{
    CNativePathClaim module;
    module.getDeviceClaimStrings().clear();
    EXPECT_THAT(module.getDeviceClaimStrings(), ElementsAre("/dev/sd"));
}

TEST(NativePathClaim, AllDigitsAtTheEndAreThePartition)
{
    CNativePathClaim module;
    expectExamples(module, {
                               {"/dev/sdb1", 2, true, "/dev/sdb", 1},
                               {"/dev/sdb12", 2, true, "/dev/sdb", 12},
                               {"/dev/sda10", 2, true, "/dev/sda", 10},
                               {"/dev/sdaa12", 2, true, "/dev/sdaa", 12},
                               {"/dev/sdc0", 2, true, "/dev/sdc", 0},
                               {"/dev/sdc9", 2, true, "/dev/sdc", 9},
                               {"/dev/sdc007", 2, true, "/dev/sdc", 7},
                               {"/dev/sd1", 2, true, "/dev/sd", 1},
                               {"/dev/sdp1", 2, true, "/dev/sdp", 1},
                               {"/dev/sdapart2", 2, true, "/dev/sdapart", 2},
                               {"/dev/sdb-1", 2, true, "/dev/sdb-", 1},
                               {"/dev/sda1b2", 2, true, "/dev/sda1b", 2},
                               {"/dev/sda/x9", 2, true, "/dev/sda/x", 9},
                           });
}

TEST(NativePathClaim, NumbersSaturateAsALongAndKeepTheLow32Bits)
{
    CNativePathClaim module;
    const std::string disk = "/dev/sda";
    expectExamples(module, {
                               {disk + "2147483647", 2, true, disk, 2147483647},
                               {disk + "2147483648", 2, true, disk, 2147483648},
                               {disk + "4294967295", 2, true, disk, 4294967295},
                               {disk + "4294967296", 2, true, disk, 0},
                               {disk + "9223372036854775807", 2, true, disk, 4294967295},
                               {disk + "9223372036854775808", 2, true, disk, 4294967295},
                               {disk + std::string(20, '9'), 2, true, disk, 4294967295},
                               {disk + std::string(100, '0') + "5", 2, true, disk, 5},
                               {disk + std::string(1 << 20, '1'), 2, true, disk, 4294967295},
                           });
}

TEST(NativePathClaim, ADiskKeepsTheCallersNumber)
{
    CNativePathClaim module;
    expectExamples(module, {
                               {"/dev/sdb", 2, false, "/dev/sdb", 7},
                               {"/dev/sdaa", 2, false, "/dev/sdaa", 7},
                               {"/dev/sdb1 ", 2, false, "/dev/sdb1 ", 7},
                               {"/dev/sdb1/", 2, false, "/dev/sdb1/", 7},
                               {"/dev/sdb1:", 2, false, "/dev/sdb1:", 7},
                               {"/dev/sdb1\xb2", 2, false, "/dev/sdb1\xb2", 7},
                           });
}

TEST(NativePathClaim, TheMarkerAloneIsNotClaimed)
{
    CNativePathClaim module;
    expectExamples(module, {
                               {"/dev/sd", 0, false, "/dev/sd", 7},
                               {"//dev/sd", 2, false, "//dev/sd", 7},
                               {"/dev/sd/", 2, false, "/dev/sd/", 7},
                           });
}

TEST(NativePathClaim, TheMarkerCountsAnywhereInThePath)
{
    CNativePathClaim module;
    expectExamples(module, {
                               {"/tmp/dev/sdb", 2, false, "/tmp/dev/sdb", 7},
                               {"/chroot/dev/sdb3", 2, true, "/chroot/dev/sdb", 3},
                               {"/dev/mapper/dev/sdx-1", 2, true, "/dev/mapper/dev/sdx-", 1},
                           });
}

TEST(NativePathClaim, APartitionIsRecognisedInAnyPathOfThreeCharactersAndMore)
{
    CNativePathClaim module;
    expectExamples(module, {
                               {"", 0, false, "", 7},
                               {"1", 0, false, "1", 7},
                               {"x", 0, false, "x", 7},
                               {"12", 0, false, "12", 7},
                               {"a1", 0, false, "a1", 7},
                               {"123", 0, true, "123", 7},
                               {"ab1", 0, true, "ab1", 7},
                               {"abc", 0, false, "abc", 7},
                               {"/dev/mapper/mpatha", 0, false, "/dev/mapper/mpatha", 7},
                               {"/dev/mapper/mpath3", 0, true, "/dev/mapper/mpath3", 7},
                               {"/dev/mapper/mpathbp2", 0, true, "/dev/mapper/mpathbp2", 7},
                               {"/dev/emcpowera", 0, false, "/dev/emcpowera", 7},
                               {"/dev/emcpowera11", 0, true, "/dev/emcpowera11", 7},
                               {"/dev/nvme0n1p1", 0, true, "/dev/nvme0n1p1", 7},
                               {"/dev/dm-3", 0, true, "/dev/dm-3", 7},
                               {"/dev/SDA1", 0, true, "/dev/SDA1", 7},
                               {"dev/sda1", 0, true, "dev/sda1", 7},
                               {"/dev/s1", 0, true, "/dev/s1", 7},
                           });
}

TEST(NativePathClaim, NamesHoldAnyBytesAndAnyNumberOfThem)
{
    CNativePathClaim module;
    using namespace std::string_literals;
    const std::string page = "/dev/sd" + std::string(4096, 'm');
    const std::string large = "/dev/sd" + mebibyte;
    expectExamples(module, {
                               {"/dev/sda\0001"s, 2, true, "/dev/sda\0"s, 1},
                               {"/dev/sda1\0"s, 2, false, "/dev/sda1\0"s, 7},
                               {"\0/dev/sda12"s, 2, true, "\0/dev/sda"s, 12},
                               {"/dev/sd\0"s, 2, false, "/dev/sd\0"s, 7},
                               {"/dev/sd\xff\x80" + "1"s, 2, true, "/dev/sd\xff\x80", 1},
                               {page + "31", 2, true, page, 31},
                               {large + "31", 2, true, large, 31},
                               {large, 2, false, large, 7},
                           });
}

TEST(NativePathClaim, AppendsTheSignedNumberToAnyPath)
{
    CNativePathClaim module;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdc", 2), "/dev/sdc2");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdc", 0), "/dev/sdc0");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdb", 12), "/dev/sdb12");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdb", 4294967295), "/dev/sdb-1");
    EXPECT_EQ(module.appendPartitionSuffix("", 3), "3");
    EXPECT_EQ(module.appendPartitionSuffix("%s%n", 9), "%s%n9");
    EXPECT_EQ(module.appendPartitionSuffix("a", 10), "a10");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483647), "a2147483647");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483648), "a-2147483648");
}

TEST(NativePathClaim, AppendingCutsAtAnEmbeddedNul)
{
    CNativePathClaim module;
    using namespace std::string_literals;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sda\0b"s, 1), "/dev/sda1");
    EXPECT_EQ(module.appendPartitionSuffix("\0"s, 1), "1");
}

TEST(NativePathClaim, AppendingCutsAt1023Characters)
{
    CNativePathClaim module;
    const std::string disk(1023, 'd');
    EXPECT_EQ(module.appendPartitionSuffix(disk.substr(0, 1021), 12), disk.substr(0, 1021) + "12");
    EXPECT_EQ(module.appendPartitionSuffix(disk.substr(0, 1022), 12), disk.substr(0, 1022) + "1");
    EXPECT_EQ(module.appendPartitionSuffix(disk, 12), disk);
    EXPECT_EQ(module.appendPartitionSuffix(disk + "d", 12), disk);
    EXPECT_EQ(module.appendPartitionSuffix(mebibyte, 12), mebibyte.substr(0, 1023));
}

TEST(NativePathClaim, ADerivedClassClaimsByItsOwnList)
{
    ClaimingBy<CNativePathClaim> module({"/dev/longer", "/dev/hd"});
    EXPECT_EQ(module.claim("/dev/hda"), CLAIM_DEFAULT);
    EXPECT_EQ(module.claim("/dev/longer1"), CLAIM_DEFAULT);
    EXPECT_EQ(module.claim("/dev/sda"), CLAIM_NONE);
    EXPECT_EQ(module.claim("/dev/hd"), CLAIM_NONE);
}

TEST(NativePathClaim, ADerivedClassWithoutStringsClaimsNothing)
{
    ClaimingBy<CNativePathClaim> module({});
    EXPECT_EQ(module.claim("/dev/sda"), CLAIM_NONE);
}

class NativePathTrace : public ClaimModuleTrace<CNativePathClaim> {
protected:
    NativePathTrace() : ClaimModuleTrace("CNativePathClaim", file) {}
};

TEST_F(NativePathTrace, ListingWritesNoLineOfItsOwn)
{
    m_module.getDeviceClaimStrings();
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("getDeviceClaimStrings", file)));
}

TEST_F(NativePathTrace, AClaimHoldsTheListingAndNoLineOfItsOwn)
{
    const TraceLines lines = Traced("claim", file, Traced("getDeviceClaimStrings", file));
    m_module.claim("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(lines));
    m_module.claim("/dev/mapper/mpatha");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(lines));
}

TEST_F(NativePathTrace, OnlyAPartitionIsWrittenDown)
{
    m_module.isPartition("/dev/sdb1");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file,
                                                           Line{3, "[/dev/sdb1] is a partition"})));
    for (const char* device : {"/dev/sdb", "12", "1", ""}) {
        m_module.isPartition(device);
        EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file)));
    }
}

TEST_F(NativePathTrace, AppendingWritesNoLineOfItsOwn)
{
    m_module.appendPartitionSuffix("/dev/sdb", 1);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("appendPartitionSuffix", file)));
}

TEST_F(NativePathTrace, RemovingWritesTheDisk)
{
    const std::pair<std::string, std::string> rows[] = {
        {"/dev/sdb12", "/dev/sdb"},
        {"/dev/sdb", "/dev/sdb"},
        {"/dev/vda1", "/dev/vda1"},
        {"1", "1"},
        {"", ""},
    };
    for (const auto& [device, disk] : rows) {
        const Line removed{6, "devicename aftering removing partition suffix [" + disk + "]."};
        unsigned int number = 7;
        m_module.removePartitionSuffix(device, number);
        EXPECT_THAT(m_log.takeLines(),
                    ElementsAreArray(Traced("removePartitionSuffix", file, removed)));
    }
}

TEST_F(NativePathTrace, NoNameIsTooLongForALine)
{
    const std::string disk = "/dev/sd" + mebibyte;
    m_module.isPartition(disk + "1");
    EXPECT_THAT(
        m_log.takeLines(),
        ElementsAreArray(Traced("isPartition", file, Line{3, "[" + disk + "1] is a partition"})));
}

} // namespace
