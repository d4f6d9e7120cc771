#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"

#include <gmock/gmock.h>

#include "claim_module_trace.h"
#include "tests/support/naming_example.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr char file[] = "dmp_linux_device_mapper_claim.cpp";
const std::string mebibyte(1 << 20, 'x');

TEST(DeviceMapperClaim, ListsItsDirectoryAnewOnEveryCall)
{
    CDmpDeviceMapperClaim module;
    module.getDeviceClaimStrings().clear();
    EXPECT_THAT(module.getDeviceClaimStrings(), ElementsAre("/dev/mapper/"));
}

TEST(DeviceMapperClaim, OneDigitBehindAPIsThePartition)
{
    CDmpDeviceMapperClaim module;
    expectExamples(
        module,
        {
            {"/dev/mapper/mpathb", 16, false, "/dev/mapper/mpathb", 0},
            {"/dev/mapper/mpathbp2", 16, true, "/dev/mapper/mpathb", 7},
            {"/dev/mapper/mpathap0", 16, true, "/dev/mapper/mpatha", 7},
            {"/dev/mapper/mpathap9", 16, true, "/dev/mapper/mpatha", 7},
            {"/dev/mapper/p1", 16, true, "/dev/mapper/", 7},
            {"/dev/mapper/pp1", 16, true, "/dev/mapper/p", 7},
            {"/dev/mapper/mpath1p3", 16, true, "/dev/mapper/mpath1", 7},
            {"/dev/mapper/mpath23p3", 16, true, "/dev/mapper/mpath23", 7},
            {"/dev/mapper/mpathap1p2", 16, true, "/dev/mapper/mpathap1", 7},
            {"/dev/mapper/3600a0b80000p4", 16, true, "/dev/mapper/3600a0b80000", 7},
            {"/dev/mapper/mapperpart/backup3p5", 16, true, "/dev/mapper/mapperpart/backup3", 7},
        });
}

TEST(DeviceMapperClaim, OtherEndingsAreThoseOfDisks)
{
    CDmpDeviceMapperClaim module;
    expectExamples(module, {
                               {"/dev/mapper/", 16, false, "/dev/mapper/", 0},
                               {"/dev/mapper/mpatha", 16, false, "/dev/mapper/mpatha", 0},
                               {"/dev/mapper/mpathbp12", 16, false, "/dev/mapper/mpathbp12", 0},
                               {"/dev/mapper/mpath1", 16, false, "/dev/mapper/mpath1", 0},
                               {"/dev/mapper/mpath2", 16, false, "/dev/mapper/mpath2", 0},
                               {"/dev/mapper/mpath23", 16, false, "/dev/mapper/mpath23", 0},
                               {"/dev/mapper/360", 16, false, "/dev/mapper/360", 0},
                               {"/dev/mapper/3600a0b8", 16, false, "/dev/mapper/3600a0b8", 0},
                               {"/dev/mapper/3600a0b8e", 16, false, "/dev/mapper/3600a0b8e", 0},
                               {"/dev/mapper/mpathap", 16, false, "/dev/mapper/mpathap", 0},
                               {"/dev/mapper/mpathaP1", 16, false, "/dev/mapper/mpathaP1", 0},
                               {"/dev/mapper/mpathaq1", 16, false, "/dev/mapper/mpathaq1", 0},
                               {"/dev/mapper/mpathap1 ", 16, false, "/dev/mapper/mpathap1 ", 0},
                               {"/dev/mapper/mpathap1/", 16, false, "/dev/mapper/mpathap1/", 0},
                               {"/dev/mapper/mpathapart1", 16, false, "/dev/mapper/mpathapart1", 0},
                               {"/dev/mapper/mpathap:", 16, false, "/dev/mapper/mpathap:", 0},
                               {"/dev/mapper/mpathap/", 16, false, "/dev/mapper/mpathap/", 0},
                               {"/dev/mapper/mpathap\xb2", 16, false, "/dev/mapper/mpathap\xb2", 0},
                           });
}

TEST(DeviceMapperClaim, AHyphenAnywhereMarksALogicalVolume)
{
    CDmpDeviceMapperClaim module;
    expectExamples(module,
                   {
                       {"/dev/mapper/datavg-lvol3", 0, false, "/dev/mapper/datavg-lvol3", 0},
                       {"/dev/mapper/vg-lvp1", 0, true, "/dev/mapper/vg-lv", 7},
                       {"/dev/mapper/mpatha-part3", 0, false, "/dev/mapper/mpatha-part3", 0},
                       {"/data-1/dev/mapper/mpathc", 0, false, "/data-1/dev/mapper/mpathc", 0},
                       {"/dev/mapper/-", 0, false, "/dev/mapper/-", 0},
                       {"/dev/mapper/mpathap-1", 0, false, "/dev/mapper/mpathap-1", 0},
                   });
}

TEST(DeviceMapperClaim, TheMarkerCountsAnywhereInThePath)
{
    CDmpDeviceMapperClaim module;
    expectExamples(module, {
                               {"/tmp/dev/mapper/x", 16, false, "/tmp/dev/mapper/x", 0},
                               {"/chroot/dev/mapper/xp1", 16, true, "/chroot/dev/mapper/x", 7},
                               {"p1/dev/mapper/", 16, false, "p1/dev/mapper/", 0},
                           });
}

TEST(DeviceMapperClaim, PathsOfOthersAreLeftAlone)
{
    CDmpDeviceMapperClaim module;
    expectExamples(module, {
                               {"", 0, false, "", 7},
                               {"1", 0, false, "1", 7},
                               {"p1", 0, false, "p1", 7},
                               {"ap1", 0, false, "ap1", 7},
                               {"/dev/mapper", 0, false, "/dev/mapper", 7},
                               {"/dev/mappe/xp1", 0, false, "/dev/mappe/xp1", 7},
                               {"dev/mapper/xp1", 0, false, "dev/mapper/xp1", 7},
                               {"/dev/Mapper/xp1", 0, false, "/dev/Mapper/xp1", 7},
                               {"/dev/sdc1", 0, false, "/dev/sdc1", 7},
                               {"/dev/sdp1", 0, false, "/dev/sdp1", 7},
                               {"/dev/dm-3", 0, false, "/dev/dm-3", 7},
                               {"/dev/nvme0n1p1", 0, false, "/dev/nvme0n1p1", 7},
                               {"/dev/emcpowerap1", 0, false, "/dev/emcpowerap1", 7},
                           });
}

TEST(DeviceMapperClaim, APartitionIsRecognisedByTheShorterMarker)
{
    CDmpDeviceMapperClaim module;
    expectExamples(module, {
                               {"/dev/mapperp1", 0, true, "/dev/mapperp1", 7},
                               {"/dev/mapperish/xp1", 0, true, "/dev/mapperish/xp1", 7},
                               {"/dev/mapper1", 0, false, "/dev/mapper1", 7},
                           });
}

TEST(DeviceMapperClaim, NamesHoldAnyBytesAndAnyNumberOfThem)
{
    CDmpDeviceMapperClaim module;
    using namespace std::string_literals;
    const std::string page = "/dev/mapper/" + std::string(4096, 'm');
    const std::string large = "/dev/mapper/" + mebibyte;
    expectExamples(module, {
                               {"/dev/mapper/a\0p1"s, 16, true, "/dev/mapper/a\0"s, 7},
                               {"/dev/mapper/ap\0001"s, 16, false, "/dev/mapper/ap\0001"s, 0},
                               {"\0/dev/mapper/ap1"s, 16, true, "\0/dev/mapper/a"s, 7},
                               {"/dev/mapper/a\0-"s, 0, false, "/dev/mapper/a\0-"s, 0},
                               {"/dev/mapper/\xff\x80p1", 16, true, "/dev/mapper/\xff\x80", 7},
                               {page + "p1", 16, true, page, 7},
                               {large + "p1", 16, true, large, 7},
                               {large, 16, false, large, 0},
                           });
}

TEST(DeviceMapperClaim, AppendsPAndTheSignedNumberToAnyPath)
{
    CDmpDeviceMapperClaim module;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpathb", 2), "/dev/mapper/mpathbp2");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpathb", 0), "/dev/mapper/mpathbp0");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpathb", 9), "/dev/mapper/mpathbp9");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpathb", 10), "/dev/mapper/mpathbp10");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpathb", 12), "/dev/mapper/mpathbp12");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/mpath2", 3), "/dev/mapper/mpath2p3");
    EXPECT_EQ(module.appendPartitionSuffix("/dev/sdc", 1), "/dev/sdcp1");
    EXPECT_EQ(module.appendPartitionSuffix("", 3), "p3");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483647), "ap2147483647");
    EXPECT_EQ(module.appendPartitionSuffix("a", 2147483648), "ap-2147483648");
    EXPECT_EQ(module.appendPartitionSuffix("a", 4294967295), "ap-1");
    EXPECT_EQ(module.appendPartitionSuffix(mebibyte, 5), mebibyte + "p5");
}

TEST(DeviceMapperClaim, AppendingKeepsEmbeddedNulBytes)
{
    CDmpDeviceMapperClaim module;
    using namespace std::string_literals;
    EXPECT_EQ(module.appendPartitionSuffix("/dev/mapper/a\0b"s, 1), "/dev/mapper/a\0bp1"s);
}

TEST(DeviceMapperClaim, PartitionZeroIsAPartitionAndANegativeOneIsNot)
{
    CDmpDeviceMapperClaim module;
    EXPECT_TRUE(module.isPartition(module.appendPartitionSuffix("/dev/mapper/mpathb", 0)));
    EXPECT_FALSE(module.isPartition(module.appendPartitionSuffix("/dev/mapper/mpathb", 10)));
    EXPECT_FALSE(module.isPartition(module.appendPartitionSuffix("/dev/mapper/mpathb", -1U)));
}

class DeviceMapperTrace : public ClaimModuleTrace<CDmpDeviceMapperClaim> {
protected:
    DeviceMapperTrace() : ClaimModuleTrace("CDmpDeviceMapperClaim", file) {}
};

TEST_F(DeviceMapperTrace, ListingWritesNoLineOfItsOwn)
{
    m_module.getDeviceClaimStrings();
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("getDeviceClaimStrings", file)));
}

TEST_F(DeviceMapperTrace, AClaimWritesOneLine)
{
    const Line claimed{3, "INFO: CDmpDeviceMapperClaim::claim - returning CLAIM_SECONDARY"};
    m_module.claim("/dev/mapper/mpathb");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file, claimed)));
}

TEST_F(DeviceMapperTrace, NoClaimWritesNoLine)
{
    m_module.claim("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file)));
    m_module.claim("/dev/mapper/vg-lv");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file)));
}

TEST_F(DeviceMapperTrace, IsPartitionWritesNoLineOfItsOwn)
{
    m_module.isPartition("/dev/mapper/mpathbp1");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file)));
    m_module.isPartition("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file)));
}

TEST_F(DeviceMapperTrace, AppendingWritesDiskPartitionAndSignedNumber)
{
    m_module.appendPartitionSuffix("/dev/mapper/mpathb", 2);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(conversion("appendPartitionSuffix", "/dev/mapper/mpathb",
                                            "/dev/mapper/mpathbp2", "2")));
    m_module.appendPartitionSuffix("/dev/x", 4294967295);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(conversion("appendPartitionSuffix", "/dev/x", "/dev/xp-1", "-1")));
}

TEST_F(DeviceMapperTrace, RemovingWritesDiskPartitionAndTheCallersNumber)
{
    unsigned int number = 4294967295;
    m_module.removePartitionSuffix("/dev/mapper/mpathbp2", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/mapper/mpathb", "/dev/mapper/mpathbp2", "-1")));
}

TEST_F(DeviceMapperTrace, RemovingNothingWritesTheSameLine)
{
    unsigned int number = 7;
    m_module.removePartitionSuffix("/dev/sdc1", number);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(removal("/dev/sdc1", "/dev/sdc1", "7")));
    m_module.removePartitionSuffix("/dev/mapper/mpathb", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/mapper/mpathb", "/dev/mapper/mpathb", "0")));
}

TEST_F(DeviceMapperTrace, TextsEndAtAnEmbeddedNul)
{
    using namespace std::string_literals;
    unsigned int number = 7;
    m_module.removePartitionSuffix("/dev/mapper/a\0p1"s, number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(removal("/dev/mapper/a", "/dev/mapper/a", "7")));
}

TEST_F(DeviceMapperTrace, NoNameIsTooLongForALine)
{
    const std::string disk = "/dev/mapper/" + mebibyte;
    unsigned int number = 7;
    m_module.removePartitionSuffix(disk + "p1", number);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(removal(disk, disk + "p1", "7")));
}

} // namespace
