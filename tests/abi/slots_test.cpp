// A host calls the library, and the library a host's modules, through numbered slots: the numbers
// never change.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "tests/support/built_in_modules.h"
#include "tests/support/host_module.h"

using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAre;

namespace {

/// The slot that a pointer to a virtual member stands for: it begins with the slot's byte offset
/// plus one.
template <class Member>
std::size_t slotOf(Member member)
{
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &member, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

TEST(Slots, OfTheReferenceCountFollowTheDestructors)
{
    EXPECT_EQ(slotOf(&CZeRefCount::increment), 2U);
    EXPECT_EQ(slotOf(&CZeRefCount::decrement), 3U);
    EXPECT_EQ(slotOf(&CZeRefCount::getCount), 4U);
}

TEST(Slots, OfATraceableFollowTheDestructors)
{
    EXPECT_EQ(slotOf(&CZeTraceable::registerTraceLog), 2U);
}

template <class Module>
using ModuleSlots = testing::Test;
TYPED_TEST_SUITE(ModuleSlots, BuiltInModulesAnd<CDmpDeviceClaimBase>);

TYPED_TEST(ModuleSlots, AreThoseOfTheContract)
{
    EXPECT_EQ(slotOf(&TypeParam::registerTraceLog), 2U);
    EXPECT_EQ(slotOf(&TypeParam::getDeviceClaimStrings), 3U);
    EXPECT_EQ(slotOf(&TypeParam::claim), 4U);
    EXPECT_EQ(slotOf(&TypeParam::isPartition), 5U);
    EXPECT_EQ(slotOf(&TypeParam::appendPartitionSuffix), 6U);
    EXPECT_EQ(slotOf(&TypeParam::removePartitionSuffix), 7U);
    EXPECT_EQ(slotOf(&TypeParam::getActivePath), 8U);
    EXPECT_EQ(slotOf(&TypeParam::isRawDevice), 9U);
    EXPECT_EQ(slotOf(&TypeParam::removeDevPrefix), 10U);
}

TEST(Slots, OfTheManagerHoldARegisterTraceLogOfItsOwn)
{
    EXPECT_EQ(slotOf(&CDmpClaimManager::registerClaimModule), 2U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::registerTraceLog), 3U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::getDeviceClaimStrings), 4U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::claim), 5U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::isPartition), 6U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::appendPartitionSuffix), 7U);
    EXPECT_EQ(slotOf(&CDmpClaimManager::removePartitionSuffix), 8U);
}

/// Calls what the object's table holds at `slot`.
template <class Result, class... Arguments>
Result callSlot(std::size_t slot, void* object, Arguments... arguments)
{
    void** table = nullptr;
    std::memcpy(&table, object, sizeof table);
    const auto function = reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot]);
    return function(object, arguments...);
}

using Strings = std::vector<std::string>;

TEST(SlotNumbers, ReachTheOperationsOfAModuleOfTheLibrary)
{
    CZeTraceLogHandle log(new CZeTraceLog);
    CDmpPowerPathClaim module;
    unsigned int number = 7;
    const std::string device = "/dev/emcpowera12";
    callSlot<void, const CZeTraceLogHandle&>(2, &module, log);
    EXPECT_EQ(log->getCount(), 2);
    EXPECT_THAT(callSlot<Strings>(3, &module), ElementsAre("/dev/emcpower"));
    EXPECT_EQ(callSlot<std::uint32_t>(4, &module, device), 16U);
    EXPECT_TRUE(callSlot<bool>(5, &module, device));
    EXPECT_EQ(callSlot<std::string>(6, &module, device, 3U), device + "3");
    EXPECT_EQ((callSlot<std::string, std::string, unsigned int&>(7, &module, device, number)),
              "/dev/emcpowera");
    EXPECT_EQ(number, 12U);
    EXPECT_EQ(callSlot<std::string>(8, &module, device, true), device);
    EXPECT_TRUE(callSlot<bool>(9, &module, device));
    EXPECT_EQ(callSlot<std::string>(10, &module, device), "emcpowera12");
}

TEST(SlotNumbers, ReachTheOperationsOfTheManager)
{
    CZeTraceLogHandle log(new CZeTraceLog);
    Journal journal;
    CDmpClaimManager manager;
    unsigned int number = 7;
    callSlot<void, CDmpDeviceClaimBase*>(2, &manager, new HostModule(journal, "host", 17));
    callSlot<void, CZeTraceLogHandle&>(3, &manager, log);
    EXPECT_EQ(log->getCount(), 3 + builtInModules);
    EXPECT_EQ(callSlot<Strings>(4, &manager).size(), 2 + claimStrings().size());
    EXPECT_EQ(callSlot<std::uint32_t>(5, &manager, std::string("d")), 17U);
    EXPECT_TRUE(callSlot<bool>(6, &manager, std::string("d")));
    EXPECT_EQ(callSlot<std::string>(7, &manager, std::string("d"), 3U), "d+3");
    EXPECT_EQ((callSlot<std::string, std::string, unsigned int&>(8, &manager, "d", number)), "d-");
    EXPECT_EQ(number, 107U);
}

TEST(SlotNumbers, OneEndsAnObjectOnTheHeap)
{
    Journal journal;
    callSlot<void>(1, new HostModule(journal, "host"));
    EXPECT_THAT(journal, ElementsAre("host: deleted"));

    auto* manager = new CDmpClaimManager;
    manager->registerClaimModule(new HostModule(journal, "managed"));
    callSlot<void>(1, manager);
    EXPECT_THAT(journal, ElementsAre("host: deleted", "managed: deleted"));
}

} // namespace
