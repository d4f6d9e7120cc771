// How many allocations the naming questions make, and a manager in a host without memory.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/support/allocation_probe.h"
#include "tests/support/recording_log.h"

using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

namespace {

TEST(AllocationProbe, SeesWhatTheLibraryAllocates)
{
    const AllocationProbe probe;
    const CDmpClaimManager manager;
    // Three modules, and the list that grows for each.
    EXPECT_EQ(probe.made(), 6U);
    EXPECT_THAT(probe.living(), SizeIs(4));
}

/// The number of allocations of a call. Expects that all of them are freed.
template <class Call>
std::size_t allocationsOf(Call call)
{
    const AllocationProbe probe;
    call();
    const std::size_t made = probe.made();
    EXPECT_THAT(probe.living(), IsEmpty());
    return made;
}

class SilentOperations : public testing::Test {
protected:
    CDmpClaimManager m_manager;
    CDmpDeviceMapperClaim m_mapper;
    CDmpPowerPathClaim m_powerPath;
    CNativePathClaim m_native;
    unsigned int m_number = 7;
};

TEST_F(SilentOperations, AClaimCopiesThePathOncePerModuleAndListsTwoPrefixes)
{
    EXPECT_THAT(allocationsOf([&] { m_manager.claim("/dev/sdc"); }), Le(2U));
    EXPECT_THAT(allocationsOf([&] { m_manager.claim("/dev/mapper/mpathbp2"); }), Le(6U));
    EXPECT_THAT(allocationsOf([&] { m_manager.claim("/dev/emcpowerc12"); }), Le(6U));
}

TEST_F(SilentOperations, AppendingGrowsThePathOnce)
{
    EXPECT_THAT(allocationsOf([&] { m_mapper.appendPartitionSuffix("/dev/mapper/mpathb", 2); }),
                Le(2U));
    EXPECT_THAT(allocationsOf([&] { m_powerPath.appendPartitionSuffix("/dev/emcpowerc", 12); }),
                Le(1U));
    EXPECT_EQ(allocationsOf([&] { m_native.appendPartitionSuffix("/dev/sdc", 2); }), 0U);
}

TEST_F(SilentOperations, RemovingShortensThePathInPlace)
{
    EXPECT_THAT(
        allocationsOf([&] { m_mapper.removePartitionSuffix("/dev/mapper/mpathbp2", m_number); }),
        Le(1U));
    EXPECT_THAT(
        allocationsOf([&] { m_powerPath.removePartitionSuffix("/dev/emcpowerc12", m_number); }),
        Le(1U));
    EXPECT_THAT(
        allocationsOf([&] { m_native.removePartitionSuffix("/dev/sd-long-name12", m_number); }),
        Le(1U));
}

TEST_F(SilentOperations, AskingForAPartitionAllocatesTheArgumentOnly)
{
    EXPECT_THAT(allocationsOf([&] { m_mapper.isPartition("/dev/mapper/mpathbp2"); }), Le(1U));
    EXPECT_THAT(allocationsOf([&] { m_powerPath.isPartition("/dev/emcpowerc12"); }), Le(1U));
    EXPECT_THAT(allocationsOf([&] { m_native.isPartition("/dev/sd-long-name12"); }), Le(1U));
}

TEST_F(SilentOperations, TheManagerCopiesThePathForTheSelectionAndMovesItToTheOwner)
{
    // The argument, the copy of the selection, the three modules' copies, and two lists.
    EXPECT_THAT(allocationsOf([&] { m_manager.isPartition("/dev/mapper/mpathbp2"); }), Le(7U));
    EXPECT_THAT(
        allocationsOf([&] { m_manager.removePartitionSuffix("/dev/mapper/mpathbp2", m_number); }),
        Le(7U));
    // And one more when the owning module appends to the path.
    EXPECT_THAT(allocationsOf([&] { m_manager.appendPartitionSuffix("/dev/mapper/mpathb", 2); }),
                Le(8U));
}

/// Lists a prefix that does not fit into a string without memory of its own.
class LongPrefixModule : public CNativePathClaim {
public:
    std::vector<std::string> getDeviceClaimStrings() override
    {
        std::vector<std::string> strings;
        strings.emplace_back("/dev/disks/of/a/long/prefix");
        return strings;
    }
};

TEST_F(SilentOperations, MergingMovesThePrefixesOutOfTheModulesLists)
{
    // Three lists, and the merged one that grows for each.
    EXPECT_THAT(allocationsOf([&] { m_manager.getDeviceClaimStrings(); }), Le(6U));
    m_manager.registerClaimModule(new LongPrefixModule);
    EXPECT_THAT(allocationsOf([&] { m_manager.getDeviceClaimStrings(); }), Le(8U));
}

TEST_F(SilentOperations, RegisteringALogAllocatesNothing)
{
    RecordingLog log;
    EXPECT_EQ(allocationsOf([&] { m_manager.registerTraceLog(log.handle()); }), 0U);
}

/// The blocks that a manager leaks whose construction fails at allocation number `failing`.
std::vector<void*> leakedBlocks(std::size_t failing)
{
    const AllocationProbe probe(failing);
    EXPECT_THROW(CDmpClaimManager(), std::bad_alloc);
    return probe.living();
}

TEST(ClaimManagerWithoutMemory, ReleasesItsListAndLeavesTheModulesMadeAlone)
{
    // Module, list, module, list, module, list.
    const std::size_t modulesMade[] = {0, 1, 1, 2, 2, 3};
    for (std::size_t failing = 1; failing <= 6; ++failing) {
        const std::vector<void*> modules = leakedBlocks(failing);
        EXPECT_THAT(modules, SizeIs(modulesMade[failing - 1])) << failing;
        for (void* block : modules) {
            const std::unique_ptr<CDmpDeviceClaimBase> module(
                static_cast<CDmpDeviceClaimBase*>(block));
            EXPECT_EQ(module->claim("/dev/vda"), CLAIM_NONE);
        }
    }
}

TEST(ClaimManagerWithoutMemory, LeavesAModuleThatItCannotListToTheHost)
{
    CDmpClaimManager manager;
    auto module = std::make_unique<LongPrefixModule>();
    // The list has room for one more module, then it grows.
    manager.registerClaimModule(new CNativePathClaim);
    {
        const AllocationProbe probe(1);
        EXPECT_THROW(manager.registerClaimModule(module.get()), std::bad_alloc);
    }
    EXPECT_THAT(manager.getDeviceClaimStrings(), SizeIs(4));
    manager.registerClaimModule(module.release());
    EXPECT_THAT(manager.getDeviceClaimStrings(), SizeIs(5));
}

} // namespace
