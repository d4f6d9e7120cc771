// Who owns a module whose registration fails, and which calls of the manager modules and logs may
// make while the manager calls them.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

#include "tests/support/built_in_modules.h"
#include "tests/support/host_module.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A log that calls back for each of its lines.
CZeTraceLogHandle calling(std::function<void(std::string_view line)> callback)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(
        6, [callback = std::move(callback)](int, std::string_view line) { callback(line); }));
    return log;
}

bool begins(std::string_view line, std::string_view beginning)
{
    return line.substr(0, beginning.size()) == beginning;
}

/// A host's module that runs `call` once, inside the next operation that it is asked for.
class CallingModule : public HostModule {
public:
    using HostModule::HostModule;

    std::vector<std::string> getDeviceClaimStrings() override
    {
        makeCall();
        return HostModule::getDeviceClaimStrings();
    }

    std::uint32_t claim(std::string device) override
    {
        makeCall();
        return HostModule::claim(device);
    }

    bool isPartition(std::string device) override
    {
        makeCall();
        return HostModule::isPartition(device);
    }

    void registerTraceLog(const CZeTraceLogHandle& log) override
    {
        HostModule::registerTraceLog(log);
        makeCall();
    }

    std::function<void()> call;

private:
    void makeCall()
    {
        if (const auto once = std::exchange(call, nullptr))
            once();
    }
};

class Registration : public testing::Test {
protected:
    CallingModule* add(const std::string& name, std::uint32_t result = CLAIM_NONE)
    {
        auto* module = new CallingModule(m_journal, name, result);
        m_manager->registerClaimModule(module);
        return module;
    }

    /// Registers so many modules that the list moves in memory; each claims every path.
    void addMany()
    {
        for (int number = 0; number < manyModules; ++number)
            m_many.push_back(add("many", 100));
    }

    static constexpr int manyModules = 100;
    Journal m_journal;
    std::vector<CallingModule*> m_many;
    std::unique_ptr<CDmpClaimManager> m_manager = std::make_unique<CDmpClaimManager>();
};

TEST_F(Registration, ThatTheLogEndsLeavesTheModuleToTheHost)
{
    CZeTraceLogHandle log = calling([](std::string_view line) {
        if (begins(line, "Entering Function registerClaimModule"))
            throw std::runtime_error("log");
    });
    m_manager->registerTraceLog(log);
    auto module = std::make_unique<HostModule>(m_journal, "x", 100);
    EXPECT_THROW(m_manager->registerClaimModule(module.get()), std::runtime_error);
    EXPECT_THROW(m_manager->registerClaimModule(nullptr), std::runtime_error);
    EXPECT_EQ(module->log(), nullptr);
    EXPECT_EQ(m_manager->claim("/dev/vda"), CLAIM_NONE);
    m_manager.reset();
    EXPECT_THAT(m_journal, IsEmpty());
    module.reset();
    EXPECT_THAT(m_journal, ElementsAre("x: deleted"));
}

TEST_F(Registration, ThatHasSucceededStaysSoWhenTheExitingLineThrows)
{
    CZeTraceLogHandle log = calling([](std::string_view line) {
        if (begins(line, "Exiting Function registerClaimModule"))
            throw std::runtime_error("log");
    });
    m_manager->registerTraceLog(log);
    EXPECT_EQ(add("x", 100)->log(), log.get());
    m_manager->registerClaimModule(nullptr);
    EXPECT_EQ(m_manager->claim("/dev/vda"), 100U);
    m_manager.reset();
    EXPECT_THAT(m_journal, ElementsAre("x: claim /dev/vda", "x: deleted"));
}

TEST_F(Registration, ThatHasFailedCanBeRepeated)
{
    auto module = std::make_unique<CallingModule>(m_journal, "x", 100);
    module->call = [] { throw std::runtime_error("no log"); };
    EXPECT_THROW(m_manager->registerClaimModule(module.get()), std::runtime_error);
    m_manager->registerClaimModule(module.get());
    static_cast<void>(module.release());
    EXPECT_EQ(m_manager->claim("/dev/vda"), 100U);
    m_manager.reset();
    EXPECT_THAT(m_journal, ElementsAre("x: claim /dev/vda", "x: deleted"));
}

TEST_F(Registration, FromWithinAClaimTakesEffectWithTheNextQuestion)
{
    CallingModule* first = add("first", 50);
    add("second");
    first->call = [this] { addMany(); };
    CDmpDeviceClaimBase* owner = nullptr;
    EXPECT_EQ(m_manager->getClaimModule(owner, "/d"), 50U);
    EXPECT_EQ(owner, first);
    EXPECT_THAT(m_journal, ElementsAre("first: claim /d", "second: claim /d"));
    EXPECT_EQ(m_manager->getClaimModule(owner, "/d"), 100U);
    EXPECT_EQ(owner, m_many.front());
}

TEST_F(Registration, FromWithinTheListOfPrefixesTakesEffectWithTheNextQuestion)
{
    CallingModule* first = add("first");
    add("second");
    first->call = [this] { addMany(); };
    const std::vector<std::string> before =
        claimStrings({"/second/1", "/second/2", "/first/1", "/first/2"});
    EXPECT_EQ(m_manager->getDeviceClaimStrings(), before);
    EXPECT_THAT(m_manager->getDeviceClaimStrings(), SizeIs(before.size() + 2 * manyModules));
}

TEST_F(Registration, FromWithinTheWinnersAnswerDoesNotDisturbIt)
{
    CallingModule* winner = add("winner", 50);
    // The first call, made inside the claim, sets the call to make inside the winner's answer.
    winner->call = [this, winner] { winner->call = [this] { addMany(); }; };
    EXPECT_TRUE(m_manager->isPartition("/d"));
    EXPECT_THAT(m_many, SizeIs(manyModules));
    EXPECT_THAT(m_journal, ElementsAre("winner: claim /d", "winner: isPartition /d"));
}

TEST_F(Registration, FromWithinALineOfTheLogTakesEffectWithTheNextQuestion)
{
    int claims = 0;
    CZeTraceLogHandle log = calling([&](std::string_view line) {
        // The manager's own line comes first, then the native module's.
        if (begins(line, "Entering Function claim") && ++claims == 2)
            addMany();
    });
    m_manager->registerTraceLog(log);
    EXPECT_EQ(m_manager->claim("/dev/sdc"), CLAIM_DEFAULT);
    EXPECT_THAT(m_journal, IsEmpty());
    EXPECT_EQ(m_manager->claim("/dev/sdc"), 100U);
    EXPECT_THAT(m_journal, SizeIs(manyModules));
    EXPECT_EQ(m_many.back()->log(), log.get());
}

TEST_F(Registration, AmidTheSharingOfALogGivesEveryModuleThatLog)
{
    RecordingLog log;
    CallingModule* first = add("first");
    const CallingModule* second = add("second");
    first->call = [this] { addMany(); };
    m_manager->registerTraceLog(log.handle());
    EXPECT_EQ(first->log(), log.handle().get());
    EXPECT_EQ(second->log(), log.handle().get());
    for (const CallingModule* module : m_many)
        EXPECT_EQ(module->log(), log.handle().get());
}

TEST_F(Registration, OfAnotherLogAmidTheSharingOfOneGivesEveryModuleTheOther)
{
    RecordingLog log;
    RecordingLog other;
    const CallingModule* first = add("first");
    CallingModule* second = add("second");
    const CallingModule* third = add("third");
    second->call = [&] { m_manager->registerTraceLog(other.handle()); };
    m_manager->registerTraceLog(log.handle());
    for (const CallingModule* module : {first, static_cast<const CallingModule*>(second), third})
        EXPECT_EQ(module->log(), other.handle().get());
    EXPECT_EQ(add("later")->log(), other.handle().get());
    EXPECT_EQ(log.handle()->getCount(), 1);
}

TEST_F(Registration, OfAnotherLogFromWithinALineLeavesTheOperationsLinesWithTheFirst)
{
    RecordingLog other;
    std::vector<std::string> lines;
    CZeTraceLogHandle log = calling([&](std::string_view line) {
        lines.emplace_back(line.substr(0, line.find(" [")));
        if (lines.size() == 1)
            m_manager->registerTraceLog(other.handle());
    });
    m_manager->registerTraceLog(log);
    log.release();
    EXPECT_EQ(m_manager->claim("/dev/sdc"), CLAIM_DEFAULT);
    EXPECT_THAT(lines, ElementsAre("Entering Function claim", "Entering Function registerTraceLog",
                                   "Exiting Function registerTraceLog", "Exiting Function claim"));
    // The other log has those of getClaimModule and of the modules.
    RecordingLog whole;
    CDmpClaimManager manager;
    manager.registerTraceLog(whole.handle());
    manager.claim("/dev/sdc");
    EXPECT_THAT(other.takeLines(), SizeIs(whole.takeLines().size() - 2));
}

TEST_F(Registration, AQuestionFromWithinAQuestionHasAnAnswerOfItsOwn)
{
    CallingModule* asking = add("asking", 50);
    std::uint32_t inner = 0;
    asking->call = [&] { inner = m_manager->claim("/dev/sdc"); };
    EXPECT_EQ(m_manager->claim("/dev/mapper/mpatha"), 50U);
    EXPECT_EQ(inner, 50U);
    EXPECT_THAT(m_journal,
                ElementsAre("asking: claim /dev/sdc", "asking: claim /dev/mapper/mpatha"));
}

} // namespace
