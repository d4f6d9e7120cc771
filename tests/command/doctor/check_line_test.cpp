#include "doctor/check_line.h"

#include <gmock/gmock.h>

namespace {

using command::CheckResult;
using command::Code;
using command::Finding;
using command::MultipathDisk;
using command::PathState;
using command::Report;
using command::StopReason;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Disks of two paths. The second path of the first `damaged` ones has failed.
Report reportOf(int disks, int damaged)
{
    Report report;
    for (int number = 0; number < disks; ++number) {
        const std::string name = std::to_string(number);
        const PathState second = number < damaged ? PathState::failed : PathState::standby;
        report.disks.push_back({"/dev/mapper/mpath" + name,
                                "device-mapper",
                                {{"sda" + name, PathState::active}, {"sdb" + name, second}}});
    }
    report.duration = std::chrono::duration<double>(0.0125);
    return report;
}

Finding onePathLeft(int number)
{
    return {Code::onePathLeft, "/dev/mapper/mpath" + std::to_string(number), "text"};
}

CheckResult check(const Report& report, const std::vector<Finding>& findings)
{
    return command::checkResult(report, findings);
}

TEST(CheckLine, AHealthyMachineIsOk)
{
    const CheckResult result = check(reportOf(24, 0), {{Code::toolReady, "kodisk", "can be run"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.line, "DMPCLAIM OK - 24 disks, 48 paths | disks=24;;;; paths=48;;;; "
                           "failed=0;;;; errors=0;;;; warnings=0;;;; time=0.013s;;;;\n");
}

TEST(CheckLine, ALostPathIsAWarning)
{
    const CheckResult result = check(reportOf(24, 1), {onePathLeft(0)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.line,
              "DMPCLAIM WARNING - 1 of 24 disks has one path left: mpath0 (sdb0 failed) | "
              "disks=24;;;; paths=47;;;; failed=1;;;; errors=0;;;; warnings=1;;;; "
              "time=0.013s;;;;\n");
}

TEST(CheckLine, ADiskWithoutPathsIsCritical)
{
    const CheckResult result =
        check(reportOf(2, 2), {onePathLeft(0), {Code::noPath, "/dev/mapper/mpath1", "text"}});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.line,
                StartsWith("DMPCLAIM CRITICAL - 1 of 2 disks has no path left: mpath1 (sdb1 "
                           "failed); 1 of 2 disks has one path left: mpath0 (sdb0 failed) | "));
}

TEST(CheckLine, NotesAreNoProblem)
{
    EXPECT_EQ(check(reportOf(1, 0), {{Code::diskNotHeld, "/dev/sda", "text"}}).status, 0);
}

TEST(CheckLine, OtherProblemsAreNamedByTheirCodes)
{
    const CheckResult result = check(reportOf(1, 0), {{Code::nodeMissing, "/dev/sda", "text"},
                                                      {Code::nodeMissing, "/dev/sdb", "text"}});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.line, StartsWith("DMPCLAIM CRITICAL - node-missing: sda, sdb | "));
}

TEST(CheckLine, ANodeOfTheVolumeManagerIsNamedWhole)
{
    EXPECT_THAT(check(reportOf(1, 0), {{Code::nodeMissing, "arr0_17", "text"}}).line,
                StartsWith("DMPCLAIM CRITICAL - node-missing: arr0_17 | "));
}

TEST(CheckLine, ALongListIsCounted)
{
    std::vector<Finding> findings;
    for (int number = 0; number < 10; ++number)
        findings.push_back(onePathLeft(number));
    const CheckResult result = check(reportOf(10, 10), findings);
    EXPECT_THAT(result.line, StartsWith("DMPCLAIM WARNING - 10 of 10 disks have one path left: "));
    EXPECT_THAT(result.line, HasSubstr("mpath7 (sdb7 failed) and 2 more | "));
    EXPECT_THAT(result.line, Not(HasSubstr("mpath8")));
}

TEST(CheckLine, AnEarlyEndIsUnknownUnlessAnErrorWasFound)
{
    Report report = reportOf(1, 0);
    report.end = StopReason::timeLimit;
    std::vector<Finding> findings{{Code::timeLimit, "dmpclaim doctor", "the time limit passed"}};
    CheckResult result = check(report, findings);
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.line, StartsWith("DMPCLAIM UNKNOWN - the time limit passed | "));
    findings.push_back(onePathLeft(0));
    EXPECT_EQ(check(report, findings).status, 3);
    findings.push_back({Code::noPath, "/dev/mapper/mpath0", "text"});
    EXPECT_EQ(check(report, findings).status, 2);
    report.end = StopReason::interrupt;
    EXPECT_EQ(check(report, {{Code::interrupted, "dmpclaim doctor", "a signal came"}}).status, 3);
}

TEST(CheckLine, IsOneLineWithOneBarWhateverTheNames)
{
    const CheckResult result = check({}, {{Code::nodeMissing, "/dev/a|b\nc", "text"}});
    EXPECT_THAT(result.line, StartsWith("DMPCLAIM CRITICAL - node-missing: a\\x7cb\\x0ac | "));
    EXPECT_EQ(std::count(result.line.begin(), result.line.end(), '|'), 1);
    EXPECT_EQ(std::count(result.line.begin(), result.line.end(), '\n'), 1);
}

TEST(CheckLine, WhatCannotBeExaminedIsUnknown)
{
    const CheckResult result = command::unknownResult("no | more\n");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.line, "DMPCLAIM UNKNOWN - no \\x7c more\\x0a\n");
}

} // namespace
