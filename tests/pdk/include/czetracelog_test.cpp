#include "pdk/include/czetracelog.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/recording_log.h"
#include "tests/support/slots.h"

using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogFunction;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceSinkHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The trace log's fields.

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

class WatchedLog : public CZeTraceLog {
public:
    explicit WatchedLog(int& ends) : m_ends(ends) {}
    ~WatchedLog() override { ++m_ends; }

private:
    int& m_ends;
};

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

// Classes that trace.

int evaluated = 0;

int evaluate()
{
    return ++evaluated;
}

class Worker : public CZeTraceable {
public:
    Worker() { CZE_TRACE_FUNCTION(); }

    int work()
    {
        CZE_TRACE_FUNCTION();
        return __LINE__ - 1;
    }

    void change(const CZeTraceLogHandle& log)
    {
        CZE_TRACE_FUNCTION();
        registerTraceLog(log);
    }

    void fail()
    {
        CZE_TRACE_FUNCTION();
        throw std::runtime_error("failed");
    }

    void report(const char* text) { CZE_TRACE(3, "INFO: %s %d", text, evaluate()); }

    void reportWhen(bool wanted)
    {
        if (wanted)
            CZE_TRACE(3, "wanted");
        else
            CZE_TRACE(2, "unwanted");
    }

    CZeTraceLogHandle& log() { return m_traceLog; }
};

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

// The function tracer.

constexpr char ownHeader[] = "pdk/include/czetracelog.h";

std::vector<Line> linesOf(const char* function, int line, const char* file)
{
    RecordingLog log;
    {
        const CZeTraceLogFunction tracer(log.handle(), function, line, file);
    }
    return log.takeLines();
}

TEST(TraceLogFunction, BracketsAnOperation)
{
    RecordingLog log;
    {
        const CZeTraceLogFunction tracer(log.handle(), "claim", 24, "../scsitool/claim.cpp");
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(Line{6, "Entering Function claim [24, claim.cpp]"}));
    }
    EXPECT_THAT(log.takeLines(), ElementsAre(Line{6, "Exiting Function claim [24, claim.cpp]"}));
}

TEST(TraceLogFunction, LineZeroIsShownAtTheEntryOnly)
{
    EXPECT_THAT(linesOf("claim", 0, "a/claim.cpp"),
                ElementsAre(Line{6, "Entering Function claim [0, claim.cpp]"},
                            Line{6, "Exiting Function claim"}));
}

TEST(TraceLogFunction, ANegativeLineIsShownAtBothEnds)
{
    EXPECT_THAT(linesOf("claim", -1, "a/claim.cpp"),
                ElementsAre(Line{6, "Entering Function claim [-1, claim.cpp]"},
                            Line{6, "Exiting Function claim [-1, claim.cpp]"}));
}

TEST(TraceLogFunction, ANullFunctionIsSilent)
{
    EXPECT_THAT(linesOf(nullptr, 24, "a/claim.cpp"), IsEmpty());
    EXPECT_THAT(linesOf(nullptr, 0, "a/claim.cpp"), IsEmpty());
}

TEST(TraceLogFunction, AnEmptyFunctionNameIsShown)
{
    EXPECT_THAT(linesOf("", 1, "a/b"), ElementsAre(Line{6, "Entering Function  [1, b]"},
                                                   Line{6, "Exiting Function  [1, b]"}));
}

TEST(TraceLogFunction, ShowsTheBaseNameOfAPathAndItsOwnHeaderForAnyOtherName)
{
    const std::vector<std::pair<const char*, std::string>> shown = {
        {"a/b/claim.cpp", "claim.cpp"},
        {"/claim.cpp", "claim.cpp"},
        {"a/", ""},
        {"claim.cpp", ownHeader},
        {"", ownHeader},
        {nullptr, ownHeader},
    };
    for (const auto& [file, text] : shown) {
        const std::string place = "Function f [1, " + text + "]";
        EXPECT_THAT(linesOf("f", 1, file),
                    ElementsAre(Line{6, "Entering " + place}, Line{6, "Exiting " + place}));
    }
}

TEST(TraceLogFunction, HoldsAReferenceWhileItLives)
{
    RecordingLog log;
    {
        const CZeTraceLogFunction tracer(log.handle(), "f", 1, "a/b");
        EXPECT_EQ(log.handle()->getCount(), 2);
    }
    EXPECT_EQ(log.handle()->getCount(), 1);
}

TEST(TraceLogFunction, OverAnEmptyHandleItDoesNothing)
{
    const CZeTraceLogHandle empty;
    const CZeTraceLogFunction tracer(empty, "f", 1, "a/b");
    EXPECT_FALSE(empty);
}

TEST(TraceLogFunction, ItsFieldsStandInTheirOrder)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    const char* file = "a/b";
    const CZeTraceLogFunction tracer(log, "f", 7, file);
    EXPECT_EQ(fieldAt<CZeTraceLog*>(&tracer, 8), log.get());
    EXPECT_STREQ(fieldAt<const char*>(&tracer, 16), "f");
    EXPECT_EQ(fieldAt<std::int32_t>(&tracer, 24), 7);
    EXPECT_EQ(fieldAt<const char*>(&tracer, 32), file + 2);
    EXPECT_EQ(sizeof tracer, 40U);
}

TEST(TraceLogFunction, TheDestructorsHaveTheFirstSlots)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    auto* tracer = new CZeTraceLogFunction(log, "f", 1, "a/b");
    slot<void(CZeTraceLogFunction*)>(tracer, 1)(tracer);
    EXPECT_EQ(log->getCount(), 1);
}

TEST(TraceLogFunction, TheMacroNamesTheOperationItsLineAndItsFile)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    const std::string place =
        "Function work [" + std::to_string(worker.work()) + ", czetracelog_test.cpp]";
    EXPECT_THAT(log.takeLines(),
                ElementsAre(Line{6, "Entering " + place}, Line{6, "Exiting " + place}));
}

TEST(TraceLogFunction, TheExitLineGoesToTheLogOfTheEntry)
{
    RecordingLog first;
    RecordingLog second;
    Worker worker;
    worker.registerTraceLog(first.handle());
    worker.change(second.handle());
    EXPECT_THAT(first.takeLines(), ElementsAre(Entering("change", "czetracelog_test.cpp"),
                                               Exiting("change", "czetracelog_test.cpp")));
    EXPECT_THAT(second.takeLines(), IsEmpty());
}

TEST(TraceLogFunction, ALogThatIsReplacedInsideLivesUntilTheExitLine)
{
    int ends = 0;
    Worker worker;
    worker.registerTraceLog(new WatchedLog(ends));
    {
        const CZeTraceLogFunction tracer(worker.log(), "f", 1, "a/b");
        worker.registerTraceLog({});
        EXPECT_EQ(ends, 0);
    }
    EXPECT_EQ(ends, 1);
}

TEST(TraceLogFunction, WritesTheExitLineWhileAnExceptionPasses)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    EXPECT_THROW(worker.fail(), std::runtime_error);
    EXPECT_THAT(log.takeLines(), ElementsAre(Entering("fail", "czetracelog_test.cpp"),
                                             Exiting("fail", "czetracelog_test.cpp")));
    EXPECT_EQ(log.handle()->getCount(), 2);
}

/// A log that throws at lines that begin with `start`.
CZeTraceLogHandle throwingLog(const std::string& start)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(6, [start](int, std::string_view text) {
        if (text.substr(0, start.size()) == start)
            throw std::domain_error("log");
    }));
    return log;
}

TEST(TraceLogFunction, ALogThatThrowsAtTheEntryIsReleased)
{
    const CZeTraceLogHandle log = throwingLog("Entering");
    EXPECT_THROW(CZeTraceLogFunction(log, "f", 1, "a/b"), std::domain_error);
    EXPECT_EQ(log->getCount(), 1);
}

TEST(TraceLogFunction, ALogThatThrowsAtTheExitIsReleasedAndEndsNothing)
{
    const CZeTraceLogHandle log = throwingLog("Exiting");
    Worker worker;
    worker.registerTraceLog(log);
    EXPECT_NO_THROW(worker.work());
    EXPECT_EQ(log->getCount(), 2);
}

TEST(TraceLogFunction, ALogThatThrowsAtTheExitLetsAnotherExceptionPass)
{
    const CZeTraceLogHandle log = throwingLog("Exiting");
    Worker worker;
    worker.registerTraceLog(log);
    EXPECT_THROW(worker.fail(), std::runtime_error);
    EXPECT_EQ(log->getCount(), 2);
}

// The helper for single lines.

TEST(Trace, WritesOneFormattedLine)
{
    RecordingLog log;
    Worker worker;
    worker.registerTraceLog(log.handle());
    evaluated = 0;
    worker.report("here");
    EXPECT_THAT(log.takeLines(), ElementsAre(Line{3, "INFO: here 1"}));
}

TEST(Trace, EvaluatesNothingWithoutALog)
{
    Worker worker;
    evaluated = 0;
    worker.report("here");
    EXPECT_EQ(evaluated, 0);
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
