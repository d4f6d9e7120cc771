// The manager owns its modules, the host's among them, and shares its log with them.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/support/built_in_modules.h"
#include "tests/support/host_module.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ManagerWithHostModules : public testing::Test {
protected:
    HostModule* add(const std::string& name, std::uint32_t result)
    {
        auto* module = new HostModule(m_journal, name, result);
        m_manager->registerClaimModule(module);
        return module;
    }

    /// The module that owns `device`; null when none does.
    CDmpDeviceClaimBase* ownerOf(const std::string& device)
    {
        CDmpDeviceClaimBase* module = nullptr;
        m_manager->getClaimModule(module, device);
        return module;
    }

    Journal m_journal;
    std::unique_ptr<CDmpClaimManager> m_manager = std::make_unique<CDmpClaimManager>();
};

TEST_F(ManagerWithHostModules, TheirPrefixesComeFirstEachGroupInItsOwnOrder)
{
    add("x", CLAIM_NONE);
    add("y", CLAIM_NONE);
    EXPECT_EQ(m_manager->getDeviceClaimStrings(), claimStrings({"/y/1", "/y/2", "/x/1", "/x/2"}));
    EXPECT_THAT(m_journal, ElementsAre("x: getDeviceClaimStrings", "y: getDeviceClaimStrings"));
}

TEST_F(ManagerWithHostModules, DuplicatePrefixesAreKept)
{
    m_manager->registerClaimModule(new CNativePathClaim);
    EXPECT_EQ(m_manager->getDeviceClaimStrings(), claimStrings({"/dev/sd"}));
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
    EXPECT_NE(dynamic_cast<CDmpDeviceMapperClaim*>(ownerOf("/dev/mapper/mpatha")), nullptr);
    EXPECT_NE(dynamic_cast<CDmpPowerPathClaim*>(ownerOf("/dev/emcpowera")), nullptr);
}

TEST_F(ManagerWithHostModules, TheFirstOfTwoEqualsWins)
{
    const HostModule* first = add("x", 1);
    add("y", 1);
    EXPECT_EQ(ownerOf("/dev/vda"), first);
}

TEST_F(ManagerWithHostModules, WinWithAStrongerClaimComparedUnsigned)
{
    const HostModule* stronger = add("x", CLAIM_SECONDARY + 1);
    EXPECT_EQ(ownerOf("/dev/mapper/mpatha"), stronger);
    const HostModule* strongest = add("y", 0x80000000);
    EXPECT_EQ(ownerOf("/dev/mapper/mpatha"), strongest);
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
    EXPECT_EQ(m_manager->getDeviceClaimStrings(), claimStrings());
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
    // The test, the manager, the built-in modules and the host's.
    EXPECT_EQ(log.handle()->getCount(), 3 + builtInModules);
    m_manager->claim("/dev/sdc");
    EXPECT_EQ(log.handle()->getCount(), 3 + builtInModules);
    m_manager.reset();
    EXPECT_EQ(log.handle()->getCount(), 1);
}

TEST_F(ManagerWithHostModules, TheLastHandleMayBeTheManagers)
{
    auto log = std::make_unique<RecordingLog>();
    m_manager->registerTraceLog(log->handle());
    koze_pdk_4_4::CZeTraceLog* raw = log->handle().get();
    log->handle().release();
    EXPECT_EQ(raw->getCount(), 1 + builtInModules);
    m_manager->claim("/dev/sdc");
    EXPECT_FALSE(log->takeLines().empty());
    m_manager.reset();
}

/// A host's module whose operations throw.
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

/// A host's module that throws when it gets a log while `refuses` is set.
class RefusingModule : public HostModule {
public:
    explicit RefusingModule(Journal& journal) : HostModule(journal, "particular") {}
    void registerTraceLog(const CZeTraceLogHandle& log) override
    {
        if (refuses)
            throw std::runtime_error("no log");
        HostModule::registerTraceLog(log);
    }

    bool refuses = false;
};

TEST_F(ManagerWithHostModules, AModuleThatRefusesTheLogIsNotListedAndStaysTheHosts)
{
    RefusingModule module(m_journal);
    module.refuses = true;
    EXPECT_THROW(m_manager->registerClaimModule(&module), std::runtime_error);
    EXPECT_EQ(m_manager->claim("/dev/vda"), CLAIM_NONE);
    EXPECT_THAT(m_journal, IsEmpty());
}

TEST_F(ManagerWithHostModules, ALogThatOneRefusesIsHeldByTheManagerAndTheModulesBefore)
{
    RecordingLog log;
    const HostModule* before = add("before", CLAIM_NONE);
    auto* particular = new RefusingModule(m_journal);
    m_manager->registerClaimModule(particular);
    const HostModule* after = add("after", CLAIM_NONE);
    particular->refuses = true;
    EXPECT_THROW(m_manager->registerTraceLog(log.handle()), std::runtime_error);
    EXPECT_EQ(before->log(), log.handle().get());
    EXPECT_EQ(after->log(), nullptr);
    EXPECT_EQ(add("later", CLAIM_NONE)->log(), log.handle().get());
}

} // namespace
