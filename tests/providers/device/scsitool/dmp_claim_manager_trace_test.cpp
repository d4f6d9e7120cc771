#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "providers/device/scsitool/dmp_built_in_modules.h"
#include "tests/support/host_module.h"
#include "tests/support/recording_log.h"
#include "tests/support/traced.h"

using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr char file[] = "dmp_claim_manager.cpp";
constexpr char nativeFile[] = "dmp_nativepath_claim.cpp";
constexpr char powerPathFile[] = "dmp_powerpath_claim.cpp";
constexpr char mapperFile[] = "dmp_linux_device_mapper_claim.cpp";

const Line powerPathClaims{3, "INFO: CDmpPowerPathClaim::claim - returning CLAIM_SECONDARY"};
const Line mapperClaims{3, "INFO: CDmpDeviceMapperClaim::claim - returning CLAIM_SECONDARY"};

// The lines of each module for a path that it does not claim. The native module writes the same for
// a path that it claims.
const TraceLines nativeAsked =
    Traced("claim", nativeFile, Traced("getDeviceClaimStrings", nativeFile));
const TraceLines powerPathAsked =
    Traced("claim", powerPathFile, Traced("getDeviceClaimStrings", powerPathFile));
const TraceLines mapperAsked = Traced("claim", mapperFile);

/// The lines of an operation of each module behind these three, which come first.
template <class Call, class... Later>
std::vector<Line> linesOfLater(
    Call call,
    ModuleList<CNativePathClaim, CDmpPowerPathClaim, CDmpDeviceMapperClaim, Later...> /*modules*/)
{
    RecordingLog log;
    [[maybe_unused]] const auto record = [&](CDmpDeviceClaimBase&& module) {
        module.registerTraceLog(log.handle());
        call(module);
    };
    (record(Later()), ...);
    return log.takeLines();
}

const std::vector<Line> laterAsked =
    linesOfLater([](CDmpDeviceClaimBase& module) { module.claim("/dev/vda"); }, BuiltInModules());
const std::vector<Line> laterListing = linesOfLater(
    [](CDmpDeviceClaimBase& module) { module.getDeviceClaimStrings(); }, BuiltInModules());

/// The selection of the device-mapper module.
const TraceLines mapperSelected = Traced("getClaimModule", file, nativeAsked, powerPathAsked,
                                         Traced("claim", mapperFile, mapperClaims), laterAsked);
/// The selection of the native module; it is also the one that finds no module.
const TraceLines plainSelection =
    Traced("getClaimModule", file, nativeAsked, powerPathAsked, mapperAsked, laterAsked);

class ManagerTrace : public testing::Test {
protected:
    ManagerTrace() { m_manager.registerTraceLog(m_log.handle()); }

    RecordingLog m_log;
    Journal m_journal;
    CDmpClaimManager m_manager;
};

TEST_F(ManagerTrace, IsEmptyBeforeTheLogIsThere)
{
    EXPECT_THAT(m_log.takeLines(), IsEmpty());
}

TEST_F(ManagerTrace, AClaimHoldsTheSelectionAndThatEveryModulesClaim)
{
    m_manager.claim("/dev/mapper/mpatha");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file, mapperSelected)));
    m_manager.claim("/dev/sdc");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file, plainSelection)));
    m_manager.claim("/dev/vda");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("claim", file, plainSelection)));
}

TEST_F(ManagerTrace, LaterModulesAreAskedBehindTheWinner)
{
    CDmpDeviceClaimBase* module = nullptr;
    m_manager.getClaimModule(module, "/dev/emcpowera");
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(
                    Traced("getClaimModule", file, nativeAsked,
                           Traced("claim", powerPathFile,
                                  Traced("getDeviceClaimStrings", powerPathFile), powerPathClaims),
                           mapperAsked, laterAsked)));
}

TEST_F(ManagerTrace, IsPartitionHoldsTheSelectionAndTheOwnersAnswer)
{
    m_manager.isPartition("/dev/mapper/mpathap1");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file, mapperSelected,
                                                           Traced("isPartition", mapperFile))));
    m_manager.isPartition("/dev/vda1");
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file, plainSelection)));
}

TEST_F(ManagerTrace, AppendingHoldsTheSelectionAndTheOwnersAnswer)
{
    m_manager.appendPartitionSuffix("/dev/sdc", 1);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced("appendPartitionSuffix", file, plainSelection,
                                        Traced("appendPartitionSuffix", nativeFile))));
    m_manager.appendPartitionSuffix("/dev/vda", 1);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced("appendPartitionSuffix", file, plainSelection)));
}

TEST_F(ManagerTrace, RemovingHoldsTheSelectionAndTheOwnersAnswer)
{
    const Line removed{6, "devicename aftering removing partition suffix [/dev/sdc]."};
    unsigned int number = 7;
    m_manager.removePartitionSuffix("/dev/sdc1", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced("removePartitionSuffix", file, plainSelection,
                                        Traced("removePartitionSuffix", nativeFile, removed))));
    m_manager.removePartitionSuffix("/dev/vda1", number);
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced("removePartitionSuffix", file, plainSelection)));
}

TEST_F(ManagerTrace, ListingHoldsTheListingsInOrder)
{
    m_manager.getDeviceClaimStrings();
    EXPECT_THAT(m_log.takeLines(),
                ElementsAreArray(Traced(
                    "getDeviceClaimStrings", file, Traced("getDeviceClaimStrings", nativeFile),
                    Traced("getDeviceClaimStrings", powerPathFile),
                    Traced("getDeviceClaimStrings", mapperFile), laterListing)));
}

TEST_F(ManagerTrace, RegisteringAModuleWritesNoLineOfItsOwn)
{
    const TraceLines lines = Traced("registerClaimModule", file);
    m_manager.registerClaimModule(nullptr);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(lines));
    m_manager.registerClaimModule(new HostModule(m_journal, "x"));
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(lines));
}

TEST_F(ManagerTrace, ANewLogIsAnnouncedInTheOneBefore)
{
    RecordingLog next;
    m_manager.registerTraceLog(next.handle());
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("registerTraceLog", file)));
    EXPECT_THAT(next.takeLines(), IsEmpty());
    m_manager.claim("/dev/vda");
    EXPECT_THAT(m_log.takeLines(), IsEmpty());
    EXPECT_THAT(next.takeLines(), ElementsAreArray(Traced("claim", file, plainSelection)));
}

TEST_F(ManagerTrace, TheSameLogAgainIsAnnouncedInIt)
{
    m_manager.registerTraceLog(m_log.handle());
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("registerTraceLog", file)));
}

TEST_F(ManagerTrace, EndsWithAnEmptyHandle)
{
    CZeTraceLogHandle none;
    m_manager.registerTraceLog(none);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("registerTraceLog", file)));
    m_manager.claim("/dev/mapper/mpatha");
    EXPECT_THAT(m_log.takeLines(), IsEmpty());
}

TEST_F(ManagerTrace, TheBasesRegisterTraceLogWritesNoLineAndLeavesTheModulesTheirs)
{
    RecordingLog next;
    static_cast<koze_pdk_4_4::CZeTraceable&>(m_manager).registerTraceLog(next.handle());
    EXPECT_THAT(m_log.takeLines(), IsEmpty());
    m_manager.claim("/dev/vda");
    EXPECT_THAT(next.takeLines(),
                ElementsAreArray(Traced("claim", file, Traced("getClaimModule", file))));
    TraceLines modules = nativeAsked;
    append(modules, powerPathAsked);
    append(modules, mapperAsked);
    append(modules, laterAsked);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(modules));
}

TEST_F(ManagerTrace, TheEndOfTheManagerWritesNoLine)
{
    auto manager = std::make_unique<CDmpClaimManager>();
    manager->registerTraceLog(m_log.handle());
    manager.reset();
    EXPECT_THAT(m_log.takeLines(), IsEmpty());
}

/// A host's module whose operations throw.
class BrokenModule : public HostModule {
public:
    explicit BrokenModule(Journal& journal) : HostModule(journal, "broken") {}
    std::uint32_t claim(std::string) override { throw std::runtime_error("no answer"); }
};

TEST_F(ManagerTrace, ExitingLinesAreWrittenWhileAnExceptionPasses)
{
    m_manager.registerClaimModule(new BrokenModule(m_journal));
    m_log.takeLines();
    EXPECT_THROW(m_manager.isPartition("/dev/vda"), std::runtime_error);
    EXPECT_THAT(m_log.takeLines(), ElementsAreArray(Traced("isPartition", file, plainSelection)));
}

} // namespace
