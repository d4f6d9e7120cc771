// What the sinks write: to callbacks, standard error and files, from several processes.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "pdk/include/czetracelog.h"
#include "tests/support/child.h"
#include "trace_file_sink.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceFileSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceSink;
using koze_pdk_4_4::CZeTraceStderrSink;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

/// The whole of a line of this process with this level and text.
std::string lineOf(int level, const std::string& text, pid_t process = getpid())
{
    return "[0-9]{4}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3}"
           "[+-][0-9]{2}:[0-9]{2} \\[" +
           std::to_string(process) + "\\] " + std::to_string(level) + " " + text;
}

TEST(TraceSink, WantsItsOwnLevelAndThoseBelow)
{
    const CZeTraceStderrSink sink(3);
    EXPECT_TRUE(sink.wants(1));
    EXPECT_TRUE(sink.wants(3));
    EXPECT_FALSE(sink.wants(4));
}

TEST(TraceSink, EverythingIncludesTheEnteringAndExitingLines)
{
    const CZeTraceStderrSink sink(CZeTraceSink::everything);
    EXPECT_TRUE(sink.wants(6));
}

TEST(TraceSink, CountsWhatItDrops)
{
    CZeTraceStderrSink sink(3);
    EXPECT_EQ(sink.dropped(), 0U);
    sink.drop();
    sink.drop();
    EXPECT_EQ(sink.dropped(), 2U);
}

TEST(TraceCallbackSink, HandsOverLevelAndTextUnaltered)
{
    int seenLevel = 0;
    std::string seenText;
    CZeTraceCallbackSink sink(6, [&](int level, std::string_view text) {
        seenLevel = level;
        seenText = text;
    });
    const std::string text("tab\tline\nend\0\x7f\x80", 15);
    sink.write(2, text);
    EXPECT_EQ(seenLevel, 2);
    EXPECT_EQ(seenText, text);
    EXPECT_TRUE(sink.wants(6));
    EXPECT_FALSE(sink.wants(7));
}

TEST(TraceCallbackSink, KeepsTheStateOfItsCallback)
{
    int seen = 0;
    CZeTraceCallbackSink sink(
        6, [&seen, lines = 0](int, std::string_view) mutable { seen = ++lines; });
    sink.write(2, "first");
    sink.write(2, "second");
    EXPECT_EQ(seen, 2);
}

TEST(TraceStderrSink, WritesToStandardError)
{
    testing::internal::CaptureStderr();
    CZeTraceStderrSink sink(6);
    sink.write(2, "to the screen");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), MatchesRegex(lineOf(2, "to the screen\n")));
    EXPECT_EQ(sink.dropped(), 0U);
}

TEST(TraceStderrSink, FollowsStandardErrorToWhereItLeads)
{
    CZeTraceStderrSink sink(6);
    testing::internal::CaptureStderr();
    sink.write(2, "elsewhere");
    testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    sink.write(2, "here");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), MatchesRegex(lineOf(2, "here\n")));
}

TEST_F(TraceFileSink, StoresTheLinesOfALog)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceFileSink(3, path));
    log->trace(2, "first %d", 1);
    log->trace(6, "unwanted");
    log->trace(3, "second");
    EXPECT_THAT(linesOf(path),
                ElementsAre(MatchesRegex(lineOf(2, "first 1")), MatchesRegex(lineOf(3, "second"))));
}

TEST_F(TraceFileSink, AppendsToWhatIsThere)
{
    std::ofstream(path) << "before\n";
    CZeTraceFileSink(6, path).write(2, "after");
    EXPECT_THAT(linesOf(path), ElementsAre("before", MatchesRegex(lineOf(2, "after"))));
}

TEST_F(TraceFileSink, AppendsBehindWhatOthersAppendMeanwhile)
{
    CZeTraceFileSink first(6, path);
    CZeTraceFileSink second(6, path);
    first.write(2, "1");
    second.write(2, "2");
    first.write(2, "3");
    EXPECT_THAT(linesOf(path),
                ElementsAre(MatchesRegex(lineOf(2, "1")), MatchesRegex(lineOf(2, "2")),
                            MatchesRegex(lineOf(2, "3"))));
}

TEST_F(TraceFileSink, ControlCharactersCannotForgeALine)
{
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"sd\n2026 [1] 2 forged", "sd\\\\x0a2026 \\[1\\] 2 forged"},
        {"a\rb\tc", "a\\\\x0db\\\\x09c"},
        {std::string("\0\x01", 2), "\\\\x00\\\\x01"},
        {"\x1b[2K\x1f", "\\\\x1b\\[2K\\\\x1f"},
        {"\x7f", "\\\\x7f"},
    };
    for (const auto& [text, escaped] : texts) {
        CZeTraceFileSink(6, path).write(2, text);
        EXPECT_THAT(linesOf(path), ElementsAre(MatchesRegex(lineOf(2, escaped))));
        std::filesystem::remove(path);
    }
}

/// What a file sink writes for a line with this text, without the line's prefix.
std::string storedText(const std::string& path, const std::string& text)
{
    CZeTraceFileSink(6, path).write(2, text);
    const std::string line = textOf(path);
    std::filesystem::remove(path);
    constexpr std::string_view level = "] 2 ";
    return line.substr(line.find(level) + level.size());
}

TEST_F(TraceFileSink, OrdinaryTextStaysAsItIs)
{
    std::string ascii;
    for (char character = ' '; character <= '~'; ++character)
        ascii += character;
    for (const std::string& text :
         {ascii, std::string("\u00a0\u00fc e\u0301 \u65e5\u672c \U0001f4be"),
          std::string("\u07ff\u0800\ud7ff\ue000\uffff\U00010000\U0010ffff")})
        EXPECT_EQ(storedText(path, text), text + "\n");
}

TEST_F(TraceFileSink, CharactersThatSteerOrReorderAreEscapedByteByByte)
{
    EXPECT_EQ(storedText(path, "a\u009b31mb\u0085"), "a\\xc2\\x9b31mb\\xc2\\x85\n");
    EXPECT_EQ(storedText(path, "\u2028\u202e\ufeff"),
              "\\xe2\\x80\\xa8\\xe2\\x80\\xae\\xef\\xbb\\xbf\n");
    EXPECT_EQ(storedText(path, "\u00ad\U000e0041"), "\\xc2\\xad\\xf3\\xa0\\x81\\x81\n");
}

TEST_F(TraceFileSink, BytesThatAreNotUtf8AreEscaped)
{
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"a\x9b"
         "31m",
         "a\\x9b31m"},
        {"\x80\xbf\xff", "\\x80\\xbf\\xff"},
        {"cut \xc3", "cut \\xc3"},
        {"cut \xe6\x97", "cut \\xe6\\x97"},
        {"cut \xf0\x9f\x92x", "cut \\xf0\\x9f\\x92x"},
        {"\xc3(", "\\xc3("},
        {"\xe2\x80\u00fc", "\\xe2\\x80\u00fc"},
        {"longer than need be \xc1\xbf\xe0\x9f\xbf\xf0\x8f\xbf\xbf",
         "longer than need be \\xc1\\xbf\\xe0\\x9f\\xbf\\xf0\\x8f\\xbf\\xbf"},
        {"halves \xed\xa0\x80\xed\xbf\xbf", "halves \\xed\\xa0\\x80\\xed\\xbf\\xbf"},
        {"too large \xf4\x90\x80\x80\xf8\x88\x80\x80\x80",
         "too large \\xf4\\x90\\x80\\x80\\xf8\\x88\\x80\\x80\\x80"},
    };
    for (const auto& [text, escaped] : texts)
        EXPECT_EQ(storedText(path, text), escaped + "\n");
}

TEST_F(TraceFileSink, AChildWritesItsOwnProcessId)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceFileSink(6, path));
    log->trace(2, "parent");
    EXPECT_TRUE(holdsInChild([&] {
        log->trace(2, "%d", getpid());
        return true;
    }));
    const std::vector<std::string> lines = linesOf(path);
    ASSERT_EQ(lines.size(), 2U);
    const pid_t child = std::stoi(lines[1].substr(lines[1].rfind(' ')));
    EXPECT_NE(child, getpid());
    EXPECT_THAT(lines[1], MatchesRegex(lineOf(2, std::to_string(child), child)));
}

TEST_F(TraceFileSink, AThreadWritesTheIdOfItsProcess)
{
    std::thread([&] { CZeTraceFileSink(6, path).write(2, "line"); }).join();
    EXPECT_THAT(linesOf(path), ElementsAre(MatchesRegex(lineOf(2, "line"))));
}

TEST_F(TraceFileSink, TheLinesOfSeveralProcessesDoNotMix)
{
    constexpr int processes = 4;
    constexpr int linesEach = 400;
    for (int process = 0; process < processes; ++process) {
        if (fork() == 0) {
            CZeTraceFileSink sink(6, path);
            for (int number = 1; number <= linesEach; ++number)
                sink.write(6, "<" + std::string(static_cast<std::size_t>(number * 7), 'x') + ">");
            _exit(sink.dropped() == 0 ? 0 : 1);
        }
    }
    for (int process = 0; process < processes; ++process) {
        int status = -1;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    const std::vector<std::string> lines = linesOf(path);
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(processes * linesEach));
    for (const std::string& line : lines)
        ASSERT_THAT(line, MatchesRegex("[^ ]* \\[[0-9]+\\] 6 <x+>"));
}

} // namespace
