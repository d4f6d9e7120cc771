// The trace log, and classes that trace: their log, and the helper for single lines.
#include "pdk/include/czetracelog.h"

#include <gmock/gmock.h>

#include "tests/support/recording_log.h"
#include "tests/support/slots.h"
#include "traced_worker.h"

using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceSinkHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class OpenLog : public CZeTraceLog {
public:
    using CZeTraceLog::m_flags;
    using CZeTraceLog::m_object;
    using CZeTraceLog::m_setting;
    using CZeTraceLog::m_texts;
};

TEST(TraceLog, StartsEmptyWithTheSetting12345)
{
    OpenLog log;
    EXPECT_EQ(log.getCount(), 0);
    for (const ACE_String_Base<char>& text : log.m_texts)
        EXPECT_EQ(text.length(), 0U);
    EXPECT_THAT(log.m_flags, ElementsAre(false, false, false));
    EXPECT_EQ(log.m_setting, 12345);
    EXPECT_FALSE(log.m_object);
}

// The five texts follow the pointer to the virtual slots.
constexpr std::size_t behindTexts = sizeof(void*) + 5 * sizeof(ACE_String_Base<char>);

TEST(TraceLog, ItsFieldsStandInTheirOrder)
{
    const OpenLog log;
    const auto offset = [&](const void* field) {
        return static_cast<std::size_t>(static_cast<const char*>(field) -
                                        reinterpret_cast<const char*>(&log));
    };
    EXPECT_EQ(offset(&log.m_texts), sizeof(void*));
    EXPECT_EQ(offset(&log.m_texts + 1), behindTexts);
    EXPECT_EQ(offset(&log.m_flags), behindTexts);
    EXPECT_EQ(offset(&log.m_flags + 1), behindTexts + 3);
    EXPECT_EQ(offset(&log.m_setting), behindTexts + 4);
    EXPECT_EQ(offset(&log.m_setting + 1), behindTexts + 8);
    EXPECT_EQ(offset(&log.m_object), behindTexts + 8);
}

TEST(TraceLog, HasNoOtherFields)
{
    EXPECT_EQ(sizeof(CZeTraceLog), behindTexts + 8 + sizeof(void*) + sizeof(CZeRefCount));
}

TEST(TraceLog, ReleasesItsSinkWithItself)
{
    const CZeTraceSinkHandle sink = new CZeTraceCallbackSink(6, {});
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(sink);
    EXPECT_EQ(sink->getCount(), 2);
    log.release();
    EXPECT_EQ(sink->getCount(), 1);
}

TEST(TraceLog, ReleasesASinkThatIsReplaced)
{
    const CZeTraceSinkHandle sink = new CZeTraceCallbackSink(6, {});
    CZeTraceLog log;
    log.setSink(sink);
    log.setSink({});
    EXPECT_EQ(sink->getCount(), 1);
}

TEST(TraceLog, EndsOnceWithItsLastHandle)
{
    int ends = 0;
    CZeTraceLogHandle first = new WatchedLog(ends);
    CZeTraceLogHandle second = first;
    EXPECT_EQ(first.release(), 1);
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(second.release(), 0);
    EXPECT_EQ(ends, 1);
}

TEST(Traceable, IsSilentAfterConstruction)
{
    Worker worker;
    EXPECT_FALSE(worker.log());
    worker.work();
    EXPECT_FALSE(worker.log());
}

TEST(Traceable, SharesTheLogThatIsRegistered)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    EXPECT_EQ(worker.log().get(), log.handle().get());
    EXPECT_EQ(log.handle()->getCount(), 2);
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST(Traceable, RegisteringItsOwnHandleChangesNothing)
{
    int ends = 0;
    Worker worker;
    worker.registerTraceLog(new WatchedLog(ends));
    worker.registerTraceLog(worker.log());
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(worker.log()->getCount(), 1);
}

TEST(Traceable, RegisteringAnEmptyHandleReleasesTheOldLogAndSilences)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    worker.registerTraceLog({});
    EXPECT_EQ(log.handle()->getCount(), 1);
    worker.work();
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST(Traceable, ReleasesItsLogWithItself)
{
    int ends = 0;
    {
        Worker worker;
        worker.registerTraceLog(new WatchedLog(ends));
    }
    EXPECT_EQ(ends, 1);
}

TEST(Traceable, IsAHandleAndItsSlots)
{
    EXPECT_EQ(sizeof(CZeTraceable), 2 * sizeof(void*));
    const CZeTraceLogHandle log = new CZeTraceLog;
    Worker worker;
    slot<void(CZeTraceable*, const CZeTraceLogHandle&)>(&worker, 2)(&worker, log);
    EXPECT_EQ(fieldAt<CZeTraceLog*>(&worker, sizeof(void*)), log.get());
}

TEST(Traceable, TheDestructorsHaveTheFirstSlots)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    auto* worker = new Worker;
    worker->registerTraceLog(log);
    slot<void(CZeTraceable*)>(worker, 1)(worker);
    EXPECT_EQ(log->getCount(), 1);
}

TEST(Trace, WritesOneFormattedLine)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    worker.report("here");
    EXPECT_THAT(log.takeLines(), ElementsAre(Line{3, "INFO: here 1"}));
}

TEST(Trace, EvaluatesNothingWithoutALog)
{
    Worker worker;
    worker.report("here");
    EXPECT_EQ(worker.evaluations(), 0);
}

TEST(Trace, IsOneStatement)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    worker.reportWhen(true);
    worker.reportWhen(false);
    EXPECT_THAT(log.takeLines(), ElementsAre(Line{3, "wanted"}, Line{2, "unwanted"}));
}

} // namespace
