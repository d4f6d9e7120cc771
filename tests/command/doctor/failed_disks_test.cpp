// Which disks a failure of a tool is said to have kept from being examined.
#include <gmock/gmock.h>

#include "doctor/disk_findings.h"

namespace {

using command::DiskAnswer;
using command::Finding;
using testing::ElementsAre;
using Outcome = DiskAnswer::Outcome;

DiskAnswer answerOf(const std::string& disk, Outcome outcome, int status = 0)
{
    DiskAnswer answer{"/dev/" + disk, outcome, "reason"};
    answer.command = "/usr/sbin/kodmpadm   getdmpnode  nodename=" + disk;
    answer.status = status;
    return answer;
}

std::vector<std::string> textsOf(const std::vector<DiskAnswer>& answers)
{
    std::vector<std::string> texts;
    command::reportAnswers(answers, false,
                           [&](const Finding& finding) { texts.push_back(finding.text); });
    return texts;
}

TEST(FailedDisks, OfTheSameFailureAreNamedTogether)
{
    EXPECT_THAT(
        textsOf({answerOf("sda", Outcome::refused, 3), answerOf("sdb", Outcome::refused, 3)}),
        ElementsAre("reason; it kept 2 disks from being examined: /dev/sda, /dev/sdb"));
}

TEST(FailedDisks, OfAnotherStatusAreNamedApart)
{
    EXPECT_THAT(
        textsOf({answerOf("sda", Outcome::refused, 3), answerOf("sdb", Outcome::refused, 4)}),
        ElementsAre("reason; it kept 1 disk from being examined: /dev/sda",
                    "reason; it kept 1 disk from being examined: /dev/sdb"));
}

TEST(FailedDisks, AreAlsoThoseThatWereNotAskedAboutAfterAToolThatHangs)
{
    EXPECT_THAT(textsOf({answerOf("sda", Outcome::hangs), answerOf("sdb", Outcome::notAsked)}),
                ElementsAre("reason; it kept 2 disks from being examined: /dev/sda, /dev/sdb"));
}

TEST(FailedDisks, AreNotThoseThatTheTimeLimitLeftOut)
{
    EXPECT_THAT(textsOf({answerOf("sda", Outcome::refused, 3), answerOf("sdb", Outcome::notAsked)}),
                ElementsAre("reason; it kept 1 disk from being examined: /dev/sda"));
}

} // namespace
