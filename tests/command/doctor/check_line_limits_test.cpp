// Lines of examinations that ended early.
#include <gmock/gmock.h>

#include "doctor/check_line.h"

namespace {

using command::CheckResult;
using command::Code;
using command::Report;
using command::StopReason;
using testing::HasSubstr;
using testing::StartsWith;

Report cutShort()
{
    Report report;
    report.end = StopReason::timeLimit;
    return report;
}

TEST(CheckLine, OfThousandsOfDisksThatWereNotExaminedItTellsTheFirst)
{
    std::string text = "the time limit of 10 s passed; 3000 of 3000 disks left unexamined: ";
    for (int disk = 0; disk < 3000; ++disk)
        text += "/dev/sd" + std::to_string(disk) + ", ";
    const CheckResult result =
        command::checkResult(cutShort(), {{Code::timeLimit, "dmpclaim doctor", text}});
    EXPECT_THAT(result.line,
                StartsWith("DMPCLAIM UNKNOWN - the time limit of 10 s passed; 3000 of 3000 disks "
                           "left unexamined: /dev/sd0, "));
    EXPECT_THAT(result.line, HasSubstr("... | disks="));
    EXPECT_LT(result.line.size(), 400U);
}

TEST(CheckLine, AnEarlyEndWhoseFindingIsLeftOutIsToldAllTheSame)
{
    const CheckResult result = command::checkResult(cutShort(), {});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.line, StartsWith("DMPCLAIM UNKNOWN - not everything was examined | "));
}

} // namespace
