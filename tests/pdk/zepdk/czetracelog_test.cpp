// How the trace log formats, filters and leaves the host alone.
#include "pdk/include/czetracelog.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <pthread.h>

#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogFunction;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceSink;
using koze_pdk_4_4::CZeTraceSinkHandle;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int formattings = 0;
bool memoryIsOut = false;

} // namespace

// In place of the C library's: counts, and fails when a test wants it to.
extern "C" int vasprintf(char** ptr, const char* f, va_list arg) noexcept
{
    ++formattings;
    if (memoryIsOut) {
        errno = ENOMEM;
        return -1;
    }
    va_list again;
    va_copy(again, arg);
    const int length = std::vsnprintf(nullptr, 0, f, again);
    va_end(again);
    if (length < 0)
        return length;
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    *ptr = static_cast<char*>(std::malloc(size));
    return std::vsnprintf(*ptr, size, f, arg);
}

namespace {

/// Keeps the lines of its level.
class KeepingSink : public CZeTraceSink {
public:
    explicit KeepingSink(int level) : CZeTraceSink(level) {}
    void write(int level, std::string_view text) override
    {
        lines.push_back({level, std::string(text)});
    }

    std::vector<Line> lines;
};

class Trace : public testing::Test {
protected:
    void SetUp() override
    {
        formattings = 0;
        memoryIsOut = false;
    }

    /// A log that keeps lines up to `level` in `sink`.
    CZeTraceLogHandle logOf(int level)
    {
        sink = new KeepingSink(level);
        sinkHandle = sink;
        CZeTraceLogHandle log = new CZeTraceLog;
        log->setSink(sinkHandle);
        return log;
    }

    KeepingSink* sink = nullptr;
    CZeTraceSinkHandle sinkHandle;
};

TEST_F(Trace, FormatsAsPrintfDoes)
{
    logOf(6)->trace(2, "Command [%s] failed with error no '%d'%c", "ls -l", -7, '.');
    EXPECT_THAT(sink->lines, ElementsAre(Line{2, "Command [ls -l] failed with error no '-7'."}));
    EXPECT_EQ(formattings, 1);
}

TEST_F(Trace, AnEmptyLineIsALine)
{
    logOf(6)->trace(1, "%s", "");
    EXPECT_THAT(sink->lines, ElementsAre(Line{1, ""}));
}

TEST_F(Trace, PercentSignsInArgumentsStayAsTheyAre)
{
    logOf(6)->trace(3, "[%s]", "%s%n");
    EXPECT_THAT(sink->lines, ElementsAre(Line{3, "[%s%n]"}));
}

TEST_F(Trace, ALineHasNoLimit)
{
    const std::string name(1 << 20, 'x');
    logOf(6)->trace(3, "%s!", name.c_str());
    EXPECT_THAT(sink->lines, ElementsAre(Line{3, name + "!"}));
}

TEST_F(Trace, ANulCharacterEndsNoLine)
{
    logOf(6)->trace(3, "a%cb", '\0');
    EXPECT_THAT(sink->lines, ElementsAre(Line{3, std::string("a\0b", 3)}));
}

TEST_F(Trace, ALineUpToTheSinksLevelIsStored)
{
    for (const int level : {1, 2, 3, 6}) {
        const CZeTraceLogHandle log = logOf(level);
        log->trace(level, "wanted");
        log->trace(1, "wanted");
        EXPECT_THAT(sink->lines, ElementsAre(Line{level, "wanted"}, Line{1, "wanted"}));
    }
}

TEST_F(Trace, ALineAboveTheSinksLevelIsNotEvenFormatted)
{
    for (const int level : {0, 1, 2, 3, 6}) {
        logOf(level)->trace(level + 1, "%d", 1);
        EXPECT_THAT(sink->lines, IsEmpty());
        EXPECT_EQ(sink->dropped(), 0U);
    }
    EXPECT_EQ(formattings, 0);
}

TEST_F(Trace, WithoutASinkNothingIsFormatted)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->trace(1, "%d", 1);
    log->setSink(new KeepingSink(6));
    log->setSink({});
    log->trace(1, "%d", 1);
    EXPECT_EQ(formattings, 0);
}

TEST_F(Trace, ALineThatCannotBeFormattedIsDroppedAndCounted)
{
    const CZeTraceLogHandle log = logOf(6);
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7fffffff), L'\0'};
    log->trace(3, "%ls", noCharacter);
    EXPECT_EQ(formattings, 1);
    EXPECT_THAT(sink->lines, IsEmpty());
    EXPECT_EQ(sink->dropped(), 1U);
}

TEST_F(Trace, ALineWithoutMemoryIsDroppedAndCounted)
{
    const CZeTraceLogHandle log = logOf(6);
    memoryIsOut = true;
    log->trace(3, "lost");
    memoryIsOut = false;
    log->trace(3, "kept");
    EXPECT_THAT(sink->lines, ElementsAre(Line{3, "kept"}));
    EXPECT_EQ(sink->dropped(), 1U);
}

TEST_F(Trace, LeavesErrnoAloneWhenFormattingFails)
{
    const CZeTraceLogHandle log = logOf(6);
    memoryIsOut = true;
    errno = EXDEV;
    log->trace(3, "lost");
    EXPECT_EQ(errno, EXDEV);
}

TEST_F(Trace, LeavesErrnoAloneWhenTheSinkSetsIt)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(6, [](int, std::string_view) { errno = EIO; }));
    errno = EXDEV;
    log->trace(3, "kept");
    EXPECT_EQ(errno, EXDEV);
}

TEST_F(Trace, WhatTheSinkThrowsReachesTheCaller)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(
        6, [](int, std::string_view) { throw std::runtime_error("sink"); }));
    errno = EXDEV;
    EXPECT_THROW(log->trace(3, "text"), std::runtime_error);
    EXPECT_EQ(errno, EXDEV);
}

/// Runs `change` in the callback that gets the log's first line. Returns whether the callback still
/// existed after it.
template <class Change>
bool outlives(CZeTraceLogHandle& log, const Change& change)
{
    struct {
        const Change& change;
        std::weak_ptr<int> life;
        bool alive;
    } state{change, {}, false};
    auto life = std::make_shared<int>();
    state.life = life;
    log->setSink(
        new CZeTraceCallbackSink(6, [life = std::move(life), &state](int, std::string_view) {
            auto& kept = state;
            kept.change();
            kept.alive = !kept.life.expired();
        }));
    log->trace(3, "line");
    EXPECT_TRUE(state.life.expired());
    return state.alive;
}

TEST_F(Trace, ACallbackMayReplaceTheSink)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    EXPECT_TRUE(outlives(log, [&log] { log->setSink({}); }));
}

TEST_F(Trace, ACallbackMayReleaseTheLog)
{
    CZeTraceLogHandle log = new CZeTraceLog;
    EXPECT_TRUE(outlives(log, [&log] { log.release(); }));
}

TEST_F(Trace, ACancelledThreadIsNotEndedInATracersDestructor)
{
    bool reached = false;
    std::thread([&reached] {
        const CZeTraceLogHandle log = new CZeTraceLog;
        log->setSink(
            new CZeTraceCallbackSink(6, [](int, std::string_view) { pthread_testcancel(); }));
        pthread_cancel(pthread_self());
        {
            const CZeTraceLogFunction tracer(log, "f", 1, "a/b");
        }
        reached = true;
        pthread_testcancel();
        reached = false;
    }).join();
    EXPECT_TRUE(reached);
}

TEST_F(Trace, AThreadThatHoldsItsCancellationOffStillDoesAfterwards)
{
    int state = PTHREAD_CANCEL_ENABLE;
    std::thread([this, &state] {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
        logOf(6)->trace(3, "line");
        pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &state);
    }).join();
    EXPECT_THAT(sink->lines, ElementsAre(Line{3, "line"}));
    EXPECT_EQ(state, PTHREAD_CANCEL_DISABLE);
}

} // namespace
