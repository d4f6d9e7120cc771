#include "doctor/trace_recorder.h"

#include "tests/command/answer_json.h"
#include "tests/support/recording_log.h"

namespace {

using koze_pdk_4_4::CZeTraceCallbackSink;

TEST(TraceRecorder, KeepsEveryLineAndPassesThoseOnThatTheUserWants)
{
    std::vector<Line> users;
    command::TraceRecorder recorder(
        new CZeTraceCallbackSink(3, [&](int level, std::string_view text) {
            users.push_back({level, std::string(text)});
        }));
    const koze_pdk_4_4::CZeTraceLogHandle log = recorder.openLog();
    log->trace(3, "a result");
    log->trace(6, "a step");
    EXPECT_EQ(command::jsonLine(recorder.takeLines()),
              R"([{"level":3,"text":"a result"},{"level":6,"text":"a step"}])"
              "\n");
    EXPECT_THAT(users, testing::ElementsAre(Line{3, "a result"}));
    EXPECT_TRUE(recorder.takeLines().empty());
}

TEST(TraceRecorder, KeepsLinesThatTheUserDoesNotWant)
{
    command::TraceRecorder recorder({});
    const koze_pdk_4_4::CZeTraceLogHandle log = recorder.openLog();
    log->trace(1, "an exception");
    EXPECT_EQ(recorder.takeLines().size(), 1U);
}

} // namespace
