#include "doctor/metrics.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

using command::Code;
using command::Finding;
using command::PathState;
using command::Report;
using testing::HasSubstr;
using testing::Not;

Report twoDisks()
{
    Report report;
    report.disks = {
        {"/dev/mapper/mpatha",
         "device-mapper",
         {{"sdb", PathState::active}, {"sdc", PathState::failed}}},
        {"arr0_17", "kodmp", {{"sdd", PathState::active, true}, {"sde", PathState::standby}}}};
    report.duration = std::chrono::duration<double>(0.25);
    return report;
}

std::string metricsOf(const Report& report, const std::vector<Finding>& findings = {})
{
    return command::metricsText(report, findings, 1700000000);
}

/// What Prometheus' own tool says of the metrics; empty when it finds nothing wrong.
std::string complaintsAbout(const std::string& metrics)
{
    const Result ended = Process({PROMTOOL, "check", "metrics"}).finish(metrics);
    return ended.status == 0 ? "" : ended.errors + ended.output;
}

TEST(Metrics, CountDisksAndPathsByDriverAndState)
{
    const std::string text = metricsOf(twoDisks());
    for (const char* line :
         {"\ndmpclaim_disks{driver=\"device-mapper\"} 1\n", "\ndmpclaim_disks{driver=\"nvme\"} 0\n",
          "\ndmpclaim_disks{driver=\"kodmp\"} 1\n",
          "\ndmpclaim_paths{driver=\"device-mapper\",state=\"failed\"} 1\n",
          "\ndmpclaim_paths{driver=\"kodmp\",state=\"standby\"} 1\n",
          "\ndmpclaim_paths{driver=\"nvme\",state=\"active\"} 0\n"})
        EXPECT_THAT(text, HasSubstr(line));
}

TEST(Metrics, TellThePathsOfEachDisk)
{
    const std::string text = metricsOf(twoDisks());
    for (const char* line :
         {"\ndmpclaim_disk_paths{device=\"/dev/mapper/mpatha\",driver=\"device-mapper\"} 2\n",
          "\ndmpclaim_disk_usable_paths{device=\"/dev/mapper/mpatha\",driver=\"device-mapper\"} "
          "1\n",
          "\ndmpclaim_disk_lost_paths{device=\"/dev/mapper/mpatha\",driver=\"device-mapper\"} 1\n",
          "\ndmpclaim_disk_lost_paths{device=\"arr0_17\",driver=\"kodmp\"} 0\n",
          "\ndmpclaim_disk_used_path_info{device=\"arr0_17\",driver=\"kodmp\",path=\"sdd\"} 1\n"})
        EXPECT_THAT(text, HasSubstr(line));
    EXPECT_THAT(text, Not(HasSubstr("info{device=\"/dev/mapper/mpatha\"")));
}

TEST(Metrics, CountFindingsOfEveryCodeThatIsAProblemOrANote)
{
    const std::string text = metricsOf({}, {{Code::nodeMissing, "/dev/sda", "text"},
                                            {Code::nodeMissing, "/dev/sdb", "text"},
                                            {Code::toolReady, "kodisk", "text"}});
    EXPECT_THAT(text,
                HasSubstr("\ndmpclaim_findings{code=\"node-missing\",severity=\"error\"} 2\n"));
    EXPECT_THAT(text, HasSubstr("\ndmpclaim_findings{code=\"no-path\",severity=\"error\"} 0\n"));
    EXPECT_THAT(text, HasSubstr("{code=\"disk-not-held\",severity=\"note\"} 0\n"));
    EXPECT_THAT(text, Not(HasSubstr("tool-ready")));
}

TEST(Metrics, TellOfTheRunItself)
{
    Report report = twoDisks();
    const std::string text = metricsOf(report);
    EXPECT_THAT(text, HasSubstr("\ndmpclaim_doctor_complete 1\n"));
    EXPECT_THAT(text, HasSubstr("\ndmpclaim_doctor_duration_seconds 0.250000\n"));
    EXPECT_THAT(text, HasSubstr("\ndmpclaim_doctor_last_run_timestamp_seconds 1700000000\n"));
    report.end = command::StopReason::timeLimit;
    EXPECT_THAT(metricsOf(report), HasSubstr("\ndmpclaim_doctor_complete 0\n"));
}

TEST(Metrics, AreWhatPrometheusReads)
{
    Report report = twoDisks();
    report.disks.push_back({"a \\ \" \n \xff", "nvme", {{"\x1b", PathState::active, true}}});
    EXPECT_EQ(complaintsAbout(metricsOf(report)), "");
    EXPECT_EQ(complaintsAbout(metricsOf({})), "");
    EXPECT_NE(complaintsAbout("dmpclaim_disks{driver=\"a\"b} 1\n"), "");
}

TEST(Metrics, ANameForgesNoLabel)
{
    Report report;
    report.disks = {{"a\",driver=\"b\\", "kodmp", {}}};
    EXPECT_THAT(metricsOf(report),
                HasSubstr("{device=\"a\\\",driver=\\\"b\\\\x5c\",driver=\"kodmp\"} 0\n"));
}

} // namespace
