// The function tracer: its entering and exiting lines, its reference to the log, and a log that
// throws.
#include "pdk/include/czetracelog.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/recording_log.h"
#include "tests/support/slots.h"
#include "tests/support/throwing_log.h"
#include "traced_worker.h"

using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogFunction;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

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
        "Function work [" + std::to_string(worker.work()) + ", traced_worker.h]";
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
    EXPECT_THAT(first.takeLines(), ElementsAre(Entering("change", "traced_worker.h"),
                                               Exiting("change", "traced_worker.h")));
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
    EXPECT_THAT(log.takeLines(), ElementsAre(Entering("fail", "traced_worker.h"),
                                             Exiting("fail", "traced_worker.h")));
    EXPECT_EQ(log.handle()->getCount(), 2);
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

} // namespace
