#include "multipath/disk_question.h"

#include <gmock/gmock.h>

using command::DiskAnswer;
using Outcome = DiskAnswer::Outcome;

namespace {

TEST(DiskQuestion, AsksNothingAboutANodeWhoseNameTheToolsWouldMisread)
{
    command::StopRequest stop;
    const koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    const DiskAnswer answer = command::askAboutNode("arr0 17", log, stop);
    EXPECT_EQ(answer.outcome, Outcome::misnamed);
    EXPECT_EQ(answer.path, "arr0 17");
    EXPECT_NE(answer.reason, "");
    EXPECT_FALSE(answer.isKnown());
    EXPECT_THAT(answer.asked, testing::IsEmpty());
}

TEST(DiskQuestion, IsTheLastWhenTheNextOneWouldFailAlike)
{
    const auto isLast = [](Outcome outcome) {
        DiskAnswer answer;
        answer.outcome = outcome;
        return answer.mustBeLast();
    };
    for (const Outcome outcome : {Outcome::hangs, Outcome::floods, Outcome::notRun})
        EXPECT_TRUE(isLast(outcome)) << static_cast<int>(outcome);
    for (const Outcome outcome :
         {Outcome::answered, Outcome::misnamed, Outcome::noNode, Outcome::refused, Outcome::failed,
          Outcome::unreadable, Outcome::notAsked})
        EXPECT_FALSE(isLast(outcome)) << static_cast<int>(outcome);
}

} // namespace
