#include "providers/device/scsitool/dmp_device_claim_base.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "tests/support/built_in_modules.h"
#include "tests/support/host_module.h"
#include "tests/support/names_model.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceLogHandle;
using testing::IsEmpty;

namespace {

TEST(ClaimResult, ComparesUnsignedFromNoneToMultipath)
{
    static_assert(std::is_same_v<decltype(CLAIM_NONE), const std::uint32_t>);
    static_assert(std::is_same_v<decltype(CLAIM_DEFAULT), const std::uint32_t>);
    static_assert(std::is_same_v<decltype(CLAIM_SECONDARY), const std::uint32_t>);
    EXPECT_EQ(CLAIM_NONE, 0U);
    EXPECT_EQ(CLAIM_DEFAULT, 2U);
    EXPECT_EQ(CLAIM_SECONDARY, 16U);
}

// The defaults, as every module has them.
template <class Module>
class ClaimModuleDefaults : public testing::Test {
protected:
    ClaimModuleDefaults() { m_module.registerTraceLog(m_log.handle()); }
    ~ClaimModuleDefaults() override { EXPECT_THAT(m_log.takeLines(), IsEmpty()); }

    RecordingLog m_log;
    Module m_module;
};

/// A module that adds nothing to the contract's defaults.
class PlainModule : public HostModule {
public:
    PlainModule() : HostModule(m_journal, "plain") {}

private:
    static inline Journal m_journal;
};

TYPED_TEST_SUITE(ClaimModuleDefaults, BuiltInModulesAnd<PlainModule>);

TYPED_TEST(ClaimModuleDefaults, ARawDeviceIsAPathThatHoldsTheDeviceDirectory)
{
    for (const char* device : {"/dev/", "/dev/sda", "/chroot/dev/sda", "x/dev/", "//dev//"})
        EXPECT_TRUE(this->m_module.isRawDevice(device)) << device;
    for (const char* device : {"", "/", "/dev", "dev/", "/dev.", "/DEV/", "/device/sda", "dev/sda"})
        EXPECT_FALSE(this->m_module.isRawDevice(device)) << device;
}

TYPED_TEST(ClaimModuleDefaults, ARawDeviceIsFoundBehindANul)
{
    using namespace std::string_literals;
    EXPECT_TRUE(this->m_module.isRawDevice("\0/dev/sda"s));
    EXPECT_FALSE(this->m_module.isRawDevice("/dev\0/sda"s));
}

TYPED_TEST(ClaimModuleDefaults, OneLeadingDeviceDirectoryIsRemoved)
{
    const std::pair<std::string, std::string> rows[] = {
        {"/dev/sda", "sda"},
        {"/dev/mapper/mpatha", "mapper/mpatha"},
        {"/dev/", ""},
        {"/dev//dev/sda", "/dev/sda"},
        {"/dev/dev/sda", "dev/sda"},
        {"/chroot/dev/sda", "/chroot/dev/sda"},
        {"x/dev/", "x/dev/"},
        {"/dev", "/dev"},
        {"dev/sda", "dev/sda"},
        {"/device/sda", "/device/sda"},
        {"/DEV/sda", "/DEV/sda"},
        {"/", "/"},
        {"", ""},
    };
    for (const auto& [device, rest] : rows)
        EXPECT_EQ(this->m_module.removeDevPrefix(device), rest);
}

// The native module asks the volume manager instead; see its own tests.
template <class Module>
using DefaultActivePath = ClaimModuleDefaults<Module>;
using ModulesWithDefault = testing::Types<PlainModule, CDmpDeviceMapperClaim, CDmpPowerPathClaim>;
TYPED_TEST_SUITE(DefaultActivePath, ModulesWithDefault);

TYPED_TEST(DefaultActivePath, IsThePathItselfWhateverTheFlag)
{
    using namespace std::string_literals;
    for (const std::string& device : {""s, "/dev/sda"s, "sda"s, "/dev/mapper/x\0y"s}) {
        EXPECT_EQ(this->m_module.getActivePath(device, true), device);
        EXPECT_EQ(this->m_module.getActivePath(device, false), device);
    }
}

// What every module does with the log that it is given.
template <class Module>
using ClaimModuleLog = testing::Test;
TYPED_TEST_SUITE(ClaimModuleLog, BuiltInModulesAnd<>);

TYPED_TEST(ClaimModuleLog, IsSharedUntilTheModuleEnds)
{
    RecordingLog log;
    {
        TypeParam module;
        EXPECT_EQ(log.handle()->getCount(), 1);
        module.registerTraceLog(log.handle());
        EXPECT_EQ(log.handle()->getCount(), 2);
        module.claim("/dev/sda1");
        EXPECT_EQ(log.handle()->getCount(), 2);
    }
    EXPECT_EQ(log.handle()->getCount(), 1);
}

TYPED_TEST(ClaimModuleLog, IsGivenBackForAnEmptyHandleAndTheModuleFallsSilent)
{
    RecordingLog log;
    TypeParam module;
    module.registerTraceLog(log.handle());
    module.registerTraceLog(CZeTraceLogHandle());
    EXPECT_EQ(log.handle()->getCount(), 1);
    module.claim("/dev/sda1");
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TYPED_TEST(ClaimModuleLog, OfTheModuleChangesNoAnswer)
{
    RecordingLog log;
    TypeParam silent;
    TypeParam traced;
    traced.registerTraceLog(log.handle());
    for (const char* device : {"", "/dev/sda1", "/dev/mapper/mpathbp2", "/dev/emcpowera11"}) {
        EXPECT_EQ(answerOf(silent, device, 3), answerOf(traced, device, 3));
    }
}

TYPED_TEST(ClaimModuleLog, IsReleasedBeforeAnOperationReturns)
{
    RecordingLog log;
    TypeParam module;
    module.registerTraceLog(log.handle());
    unsigned int number = 7;
    module.getDeviceClaimStrings();
    module.isPartition("/dev/sda1");
    module.appendPartitionSuffix("/dev/sda", 1);
    module.removePartitionSuffix("/dev/sda1", number);
    EXPECT_EQ(log.handle()->getCount(), 2);
}

} // namespace
