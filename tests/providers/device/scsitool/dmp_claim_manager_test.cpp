#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/support/host_module.h"
#include "tests/support/naming_example.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string mebibyte(1 << 20, 'x');

/// The module that owns `device`; null when nobody does.
CDmpDeviceClaimBase* ownerOf(CDmpClaimManager& manager, const std::string& device)
{
    CDmpDeviceClaimBase* module = nullptr;
    manager.getClaimModule(module, device);
    return module;
}

template <class Module>
bool owns(CDmpClaimManager& manager, const std::string& device)
{
    return dynamic_cast<Module*>(ownerOf(manager, device)) != nullptr;
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
                                {"/dev/vda1", 0, false, "", 7},
                                {"/dev/nvme0n1p1", 0, false, "", 7},
                                {"/dev/dm-3", 0, false, "", 7},
                                {"/dev/mapper/vg-lvp1", 0, false, "", 7},
                                {"/dev/mapperp1", 0, false, "", 7},
                                {"emcpowerd2", 0, false, "", 7},
                                {"/dev/\0sda1"s, 0, false, "", 7},
                                {mebibyte + "1", 0, false, "", 7},
                            });
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
    EXPECT_THAT(manager.getDeviceClaimStrings(),
                ElementsAre("/dev/mapper/", "/dev/emcpower", "/dev/sd"));
}

class ManagerWithHostModules : public testing::Test {
protected:
    HostModule* add(const std::string& name, std::uint32_t result)
    {
        auto* module = new HostModule(m_journal, name, result);
        m_manager->registerClaimModule(module);
        return module;
    }

    Journal m_journal;
    std::unique_ptr<CDmpClaimManager> m_manager = std::make_unique<CDmpClaimManager>();
};

TEST_F(ManagerWithHostModules, TheirPrefixesComeFirstEachGroupInItsOwnOrder)
{
    add("x", CLAIM_NONE);
    add("y", CLAIM_NONE);
    EXPECT_THAT(
        m_manager->getDeviceClaimStrings(),
        ElementsAre("/y/1", "/y/2", "/x/1", "/x/2", "/dev/mapper/", "/dev/emcpower", "/dev/sd"));
    EXPECT_THAT(m_journal, ElementsAre("x: getDeviceClaimStrings", "y: getDeviceClaimStrings"));
}

TEST_F(ManagerWithHostModules, DuplicatePrefixesAreKept)
{
    m_manager->registerClaimModule(new CNativePathClaim);
    EXPECT_THAT(m_manager->getDeviceClaimStrings(),
                ElementsAre("/dev/sd", "/dev/mapper/", "/dev/emcpower", "/dev/sd"));
}

TEST_F(ManagerWithHostModules, AreAllAskedInOrderEvenAfterAClaim)
{
    add("x", 4294967295);
    add("y", CLAIM_NONE);
    EXPECT_EQ(m_manager->claim("/dev/vda"), 4294967295);
    EXPECT_THAT(m_journal, ElementsAre("x: claim /dev/vda", "y: claim /dev/vda"));
}

TEST_F(ManagerWithHostModules, NeverWinWithAnEqualClaim)
{
    add("x", CLAIM_SECONDARY);
    EXPECT_TRUE(owns<CDmpDeviceMapperClaim>(*m_manager, "/dev/mapper/mpatha"));
    EXPECT_TRUE(owns<CDmpPowerPathClaim>(*m_manager, "/dev/emcpowera"));
}

TEST_F(ManagerWithHostModules, TheFirstOfTwoEqualsWins)
{
    const HostModule* first = add("x", 1);
    add("y", 1);
    EXPECT_EQ(ownerOf(*m_manager, "/dev/vda"), first);
}

TEST_F(ManagerWithHostModules, WinWithAStrongerClaimComparedUnsigned)
{
    const HostModule* stronger = add("x", CLAIM_SECONDARY + 1);
    EXPECT_EQ(ownerOf(*m_manager, "/dev/mapper/mpatha"), stronger);
    const HostModule* strongest = add("y", 0x80000000);
    EXPECT_EQ(ownerOf(*m_manager, "/dev/mapper/mpatha"), strongest);
}

TEST_F(ManagerWithHostModules, AreAskedThenTheWinnerIsCalled)
{
    add("x", 1);
    add("y", 17);
    unsigned int number = 7;
    EXPECT_TRUE(m_manager->isPartition("/d"));
    EXPECT_EQ(m_manager->appendPartitionSuffix("/d", 3), "/d+3");
    EXPECT_EQ(m_manager->removePartitionSuffix("/d", number), "/d-");
    EXPECT_EQ(number, 107U);
    EXPECT_THAT(m_journal,
                ElementsAre("x: claim /d", "y: claim /d", "y: isPartition /d", "x: claim /d",
                            "y: claim /d", "y: appendPartitionSuffix /d", "x: claim /d",
                            "y: claim /d", "y: removePartitionSuffix /d"));
}

TEST_F(ManagerWithHostModules, AreDeletedInOrderWithTheManager)
{
    add("x", CLAIM_NONE);
    add("y", CLAIM_NONE);
    EXPECT_THAT(m_journal, IsEmpty());
    m_manager.reset();
    EXPECT_THAT(m_journal, ElementsAre("x: deleted", "y: deleted"));
}

TEST_F(ManagerWithHostModules, AreDeletedThroughAReferenceToTheBase)
{
    add("x", CLAIM_NONE);
    std::unique_ptr<CZeTraceable> base = std::move(m_manager);
    base.reset();
    EXPECT_THAT(m_journal, ElementsAre("x: deleted"));
}

TEST_F(ManagerWithHostModules, ANullModuleIsIgnored)
{
    m_manager->registerClaimModule(nullptr);
    EXPECT_EQ(m_manager->claim("/dev/sdc"), CLAIM_DEFAULT);
    EXPECT_THAT(m_manager->getDeviceClaimStrings(),
                ElementsAre("/dev/mapper/", "/dev/emcpower", "/dev/sd"));
}

TEST_F(ManagerWithHostModules, ReceiveTheLogWhetherTheyComeBeforeOrAfterIt)
{
    RecordingLog log;
    const HostModule* before = add("x", CLAIM_NONE);
    EXPECT_EQ(before->log(), nullptr);
    m_manager->registerTraceLog(log.handle());
    const HostModule* after = add("y", CLAIM_NONE);
    EXPECT_EQ(before->log(), log.handle().get());
    EXPECT_EQ(after->log(), log.handle().get());
}

TEST_F(ManagerWithHostModules, ALogOfTheirOwnIsReplacedByTheManagers)
{
    RecordingLog log;
    auto* module = new HostModule(m_journal, "x");
    module->registerTraceLog(log.handle());
    m_manager->registerClaimModule(module);
    EXPECT_EQ(module->log(), nullptr);
}

TEST_F(ManagerWithHostModules, ALaterLogReplacesTheEarlierAndAnEmptyOneSilences)
{
    RecordingLog first;
    RecordingLog second;
    CZeTraceLogHandle none;
    const HostModule* module = add("x", CLAIM_NONE);
    m_manager->registerTraceLog(first.handle());
    m_manager->registerTraceLog(second.handle());
    EXPECT_EQ(module->log(), second.handle().get());
    EXPECT_EQ(first.handle()->getCount(), 1);
    m_manager->registerTraceLog(none);
    EXPECT_EQ(module->log(), nullptr);
    EXPECT_EQ(second.handle()->getCount(), 1);
}

TEST_F(ManagerWithHostModules, TheBasesRegisterTraceLogReachesTheManagerOnly)
{
    RecordingLog log;
    const HostModule* before = add("x", CLAIM_NONE);
    static_cast<CZeTraceable&>(*m_manager).registerTraceLog(log.handle());
    EXPECT_EQ(before->log(), nullptr);
    EXPECT_EQ(log.handle()->getCount(), 2);
    const HostModule* after = add("y", CLAIM_NONE);
    EXPECT_EQ(after->log(), log.handle().get());
}

TEST_F(ManagerWithHostModules, TheLogIsReleasedWithTheManager)
{
    RecordingLog log;
    m_manager->registerTraceLog(log.handle());
    add("x", CLAIM_NONE);
    // The test, the manager, three built-in modules and the host's.
    EXPECT_EQ(log.handle()->getCount(), 6);
    m_manager->claim("/dev/sdc");
    EXPECT_EQ(log.handle()->getCount(), 6);
    m_manager.reset();
    EXPECT_EQ(log.handle()->getCount(), 1);
}

TEST_F(ManagerWithHostModules, TheLastHandleMayBeTheManagers)
{
    auto log = std::make_unique<RecordingLog>();
    m_manager->registerTraceLog(log->handle());
    koze_pdk_4_4::CZeTraceLog* raw = log->handle().get();
    log->handle().release();
    EXPECT_EQ(raw->getCount(), 4);
    m_manager->claim("/dev/sdc");
    EXPECT_EQ(log->takeLines().size(), 14U);
    m_manager.reset();
}

/// A host's module that gives up.
class BrokenModule : public HostModule {
public:
    explicit BrokenModule(Journal& journal) : HostModule(journal, "broken") {}
    std::uint32_t claim(std::string) override { throw std::runtime_error("no answer"); }
    std::vector<std::string> getDeviceClaimStrings() override { throw std::runtime_error("none"); }
};

TEST_F(ManagerWithHostModules, WhatOneThrowsReachesTheHostAndTheManagerStaysUsable)
{
    m_manager->registerClaimModule(new BrokenModule(m_journal));
    CDmpDeviceClaimBase* module = nullptr;
    EXPECT_THROW(m_manager->claim("/dev/sdc"), std::runtime_error);
    EXPECT_THROW(m_manager->getClaimModule(module, "/dev/vda"), std::runtime_error);
    EXPECT_THROW(m_manager->getDeviceClaimStrings(), std::runtime_error);
    EXPECT_EQ(module, nullptr);
    add("after", CLAIM_NONE);
    m_manager.reset();
    EXPECT_THAT(m_journal, ElementsAre("broken: deleted", "after: deleted"));
}

} // namespace
