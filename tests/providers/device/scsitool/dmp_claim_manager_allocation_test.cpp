// How many allocations the naming questions make, and a manager in a host without memory.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>

#include "tests/support/allocation_probe.h"
#include "tests/support/built_in_modules.h"
#include "tests/support/recording_log.h"

using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

namespace {

/// Whether a list of so many modules is full: it has room for 1, 2, 4, 8 and so on.
bool isFull(int count)
{
    return (count & (count - 1)) == 0;
}

TEST(AllocationProbe, SeesWhatTheLibraryAllocates)
{
    const AllocationProbe probe;
    const CDmpClaimManager manager;
    // The modules, and the list, which grows for a module when it is full.
    std::size_t made = 0;
    for (int listed = 0; listed < builtInModules; ++listed)
        made += isFull(listed) ? 2 : 1;
    EXPECT_EQ(probe.made(), made);
    EXPECT_THAT(probe.living(), SizeIs(builtInModules + 1));
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

/// The allocations of the claims of all modules, each with a copy of the path.
template <class... Modules>
std::size_t claimsOf(const char* device, ModuleList<Modules...> /*modules*/)
{
    return (allocationsOf([&] { Modules().claim(device); }) + ...);
}

class SilentOperations : public testing::Test {
protected:
    CDmpClaimManager m_manager;
    CDmpDeviceMapperClaim m_mapper;
    CDmpPowerPathClaim m_powerPath;
    CNativePathClaim m_native;
    unsigned int m_number = 7;
};

TEST_F(SilentOperations, AClaimOfAModuleCopiesThePathAndListsItsPrefix)
{
    EXPECT_THAT(allocationsOf([&] { m_mapper.claim("/dev/mapper/mpathbp2"); }), Le(1U));
    EXPECT_THAT(allocationsOf([&] { m_powerPath.claim("/dev/emcpowerc12"); }), Le(2U));
    EXPECT_THAT(allocationsOf([&] { m_native.claim("/dev/sd-long-name12"); }), Le(2U));
}

TEST_F(SilentOperations, AClaimOfTheManagerHasThatOfEachModule)
{
    EXPECT_THAT(allocationsOf([&] { m_manager.claim("/dev/sdc"); }),
                Le(claimsOf("/dev/sdc", BuiltInModules())));
    for (const char* device : {"/dev/mapper/mpathbp2", "/dev/emcpowerc12"}) {
        EXPECT_THAT(allocationsOf([&] { m_manager.claim(device); }),
                    Le(1 + claimsOf(device, BuiltInModules())));
    }
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
    // The argument, and the copy of the selection.
    const std::size_t selection = 2 + claimsOf("/dev/mapper/mpathbp2", BuiltInModules());
    EXPECT_THAT(allocationsOf([&] { m_manager.isPartition("/dev/mapper/mpathbp2"); }),
                Le(selection));
    EXPECT_THAT(
        allocationsOf([&] { m_manager.removePartitionSuffix("/dev/mapper/mpathbp2", m_number); }),
        Le(selection));
    // And one more when the owning module appends to the path.
    EXPECT_THAT(allocationsOf([&] { m_manager.appendPartitionSuffix("/dev/mapper/mpathb", 2); }),
                Le(selection + 1));
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
    // The modules' lists, and the merged one that grows for each.
    EXPECT_THAT(allocationsOf([&] { m_manager.getDeviceClaimStrings(); }), Le(2U * builtInModules));
    m_manager.registerClaimModule(new LongPrefixModule);
    // One more list, and the memory of its prefix.
    EXPECT_THAT(allocationsOf([&] { m_manager.getDeviceClaimStrings(); }),
                Le(2U * builtInModules + 2));
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
    // A module, then the list when it is full, and so on.
    std::vector<std::size_t> modulesMade;
    for (int listed = 0; listed < builtInModules; ++listed) {
        modulesMade.push_back(static_cast<std::size_t>(listed));
        if (isFull(listed))
            modulesMade.push_back(static_cast<std::size_t>(listed) + 1);
    }
    for (std::size_t failing = 1; failing <= modulesMade.size(); ++failing) {
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
    int listed = builtInModules;
    for (; !isFull(listed); ++listed)
        manager.registerClaimModule(new CNativePathClaim);
    {
        const AllocationProbe probe(1);
        EXPECT_THROW(manager.registerClaimModule(module.get()), std::bad_alloc);
    }
    EXPECT_THAT(manager.getDeviceClaimStrings(), SizeIs(listed));
    manager.registerClaimModule(module.release());
    EXPECT_THAT(manager.getDeviceClaimStrings(), SizeIs(listed + 1));
}

} // namespace
