// The monitoring files held against the command.
#include <gmock/gmock.h>

#include <set>
#include <string>

#include "doctor/doctor_options.h"
#include "doctor/metrics.h"
#include "tests/command/namespaced_tools.h"
#include "tests/support/matches.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSubsetOf;
using testing::StartsWith;

constexpr char rulesFile[] = MONITORING "/dmpclaim.rules.yml";
constexpr char icingaFile[] = MONITORING "/dmpclaim-icinga2.conf";
constexpr char nagiosFile[] = MONITORING "/dmpclaim-nagios.cfg";
constexpr char serviceFile[] = MONITORING_BUILD "/dmpclaim-metrics.service";

/// Where Debian's node exporter looks for files that end in ".prom".
constexpr char collectorFolder[] = "/var/lib/prometheus/node-exporter/";

std::set<std::string> offeredOptions()
{
    std::set<std::string> names;
    for (const command::OptionDeclaration& option : command::doctorOptionDeclarations())
        names.merge(matches(option.names, "--[a-z-]+"));
    return names;
}

std::set<std::string> offeredAnd(std::set<std::string> others)
{
    others.merge(offeredOptions());
    return others;
}

TEST(AlertRules, UseMetricsThatTheDoctorWrites)
{
    const std::string metrics = command::metricsText({}, {}, 0);
    const std::set<std::string> used = matches(textOf(rulesFile), "dmpclaim_[a-z_]+");
    EXPECT_GE(used.size(), 5U);
    EXPECT_THAT(used, IsSubsetOf(matches(metrics, "dmpclaim_[a-z_]+")));
}

TEST(Plugins, AreCalledWithOptionsThatTheDoctorHas)
{
    for (const char* file : {icingaFile, nagiosFile}) {
        const std::set<std::string> used = matches(textOf(file), "--[a-z][a-z-]*");
        EXPECT_THAT(used,
                    AllOf(IsSubsetOf(offeredOptions()), Contains("--check"), Contains("--timeout")))
            << file;
    }
}

TEST(MonitoringPage, NamesEveryMetricAndEveryAlert)
{
    const std::string page = textOf(MONITORING "/../docs/monitoring.md");
    for (const std::string& metric :
         matches(command::metricsText({}, {}, 0), "dmpclaim_[a-z_]+(?= gauge)"))
        EXPECT_THAT(page, HasSubstr("\n| `" + metric + "` |"));
    for (const std::string& alert : matches(textOf(rulesFile), "alert: [A-Za-z]+"))
        EXPECT_THAT(page, HasSubstr("\n| `" + alert.substr(7) + "` |"));
    EXPECT_THAT(matches(page, "--[a-z][a-z-]*"), IsSubsetOf(offeredAnd({"--now"})));
}

class MetricsService : public NamespacedTools {
protected:
    /// The value of a key in the service's file.
    static std::string value(const std::string& key)
    {
        for (const std::string& line : linesOf(serviceFile)) {
            if (line.rfind(key + '=', 0) == 0)
                return line.substr(key.size() + 1);
        }
        return {};
    }

    /// Runs the service's command line as systemd does, and prints what the collector's folder
    /// holds then.
    Result runService() const
    {
        const std::string line = value("ExecStart");
        const std::string script =
            "mount -t tmpfs tmpfs /var/lib && mkdir -p " + std::string(collectorFolder) +
            " && DMPCLAIM_METRICS_OPTIONS='--expect-paths 4' && " DMPCLAIM_COMMAND +
            line.substr(line.find(' ')) + " && cd " + collectorFolder +
            " && ls -l && cat dmpclaim.prom";
        return Process(inNamespace({"sh", "-c", script})).finish();
    }
};

TEST_F(MetricsService, WritesWhereTheCollectorReads)
{
    const Result ended = runService();
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(splitLines(ended.output),
                AllOf(Contains(StartsWith("-rw-r--r--")), Contains("dmpclaim_doctor_complete 1")));
}

TEST_F(MetricsService, StartsTheInstalledCommand)
{
    EXPECT_THAT(value("ExecStart"), testing::MatchesRegex("/[^ @]*/bin/dmpclaim doctor .*"));
    EXPECT_EQ(value("ConditionPathIsDirectory") + '/', collectorFolder);
    EXPECT_EQ(value("Type"), "oneshot");
}

TEST_F(MetricsService, IsGivenMoreTimeThanTheCommandTakes)
{
    const std::string line = value("ExecStart");
    const std::size_t limit = line.find("--timeout ");
    ASSERT_NE(limit, std::string::npos);
    EXPECT_GT(std::stoi(value("TimeoutStartSec")), std::stoi(line.substr(limit + 10)) + 5);
}

} // namespace
