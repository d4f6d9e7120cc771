// What monitoring programs get from the command: exit statuses, plugin lines, metrics, and an
// answer in time.
#include "doctor/finding_codes.h"
#include "doctor_command.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

#include <algorithm>
#include <csignal>
#include <fstream>

namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class DoctorMonitoring : public Doctor {
protected:
    /// A multipath map of two disks with a partition, on a machine whose tools hold other disks.
    void addMap()
    {
        machine.addDisk("sdx", "8:0", "2:0:0:0");
        machine.addDisk("sdy", "8:16", "3:0:0:0");
        machine.addMapWithNode("mpatha", "mpath-3600", {"sdx", "sdy"});
        machine.addMapWithNode("mpathap1", "part1-mpath-3600", {"dm-0"});
        machine.addDeviceWithNode("sdb");
    }

    void loseAPath() { machine.set("sdy", "device/state", "offline"); }

    std::string metricsPath() const { return (folder() / "dmpclaim.prom").string(); }
};

TEST_F(DoctorMonitoring, ALostPathOfAMapIsFoundWhicheverPartIsAskedAbout)
{
    addMap();
    EXPECT_EQ(run({"/dev/mapper/mpatha"}).status, 0);
    loseAPath();
    for (const char* path : {"/dev/mapper/mpatha", "/dev/mapper/mpathap1"}) {
        const Result ended = run({"-q", path});
        EXPECT_EQ(ended.status, 64) << path;
        EXPECT_THAT(splitLines(ended.output),
                    ElementsAre("warning  one-path-left /dev/mapper/mpatha: sdy offline; 1 of 2 "
                                "paths is left",
                                "         To do: Check the cables, the switches and the array.",
                                "         Type: multipath -ll /dev/mapper/mpatha"))
            << path;
    }
}

TEST_F(DoctorMonitoring, OfTwoPathsOnlyTheOneThatIsAskedAboutIsTold)
{
    addMap();
    loseAPath();
    EXPECT_EQ(run({"-q", "/dev/sdx"}).output, "");
    EXPECT_THAT(
        splitLines(run({"-q", "/dev/sdy"}).output),
        Contains("warning  path-failed /dev/sdy: a path of /dev/mapper/mpatha, and offline"));
}

TEST_F(DoctorMonitoring, AsManyPathsAreExpectedAsTheUserSays)
{
    addMap();
    EXPECT_EQ(run({"-q", "--expect-paths", "2"}).status, 0);
    const Result ended = run({"-J", "-q", "--expect-paths", "3"});
    EXPECT_EQ(ended.status, 64);
    const Json report = Json::parse(ended.output);
    ASSERT_EQ(report["findings"].size(), 2U); // of the map, and of the volume manager's node
    EXPECT_EQ(report["findings"][0]["code"], "fewer-paths");
    EXPECT_EQ(report["findings"][1]["code"], "fewer-paths");
}

TEST_F(DoctorMonitoring, FindingsAreChosenByTheirCodes)
{
    addMap();
    loseAPath();
    machine.addDevice("emcpowera");
    EXPECT_EQ(run({"-q"}).status, 32);
    Result ended = run({"-q", "--ignore", "node-missing"});
    EXPECT_EQ(ended.status, 64);
    EXPECT_THAT(ended.output, Not(HasSubstr("node-missing")));
    ended = run({"--only", "node-missing,no-path"});
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, Not(HasSubstr("one-path-left")));
    EXPECT_THAT(ended.output, testing::EndsWith("\n1 error, 0 warnings\n"));
    EXPECT_EQ(run({"-q", "--only", "no-path"}).output, "");
}

TEST_F(DoctorMonitoring, CodesAreListed)
{
    const Result ended = run({"--codes"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, command::codeList());
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_THAT(run({"--help"}).output, HasSubstr(command::codeHelp()));
}

TEST_F(DoctorMonitoring, APluginsLineTellsWhatIsLost)
{
    addMap();
    EXPECT_EQ(run({"--check"}).status, 0);
    loseAPath();
    const Result ended = run({"--check"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "");
    EXPECT_THAT(ended.output,
                StartsWith("DMPCLAIM WARNING - 1 of 2 disks has one path left: mpatha (sdy "
                           "offline) | disks=2;;;; paths=3;;;; failed=1;;;; errors=0;;;; "
                           "warnings=1;;;; time=0."));
    machine.set("sdx", "device/state", "offline");
    EXPECT_EQ(run({"--check"}).status, 2);
}

TEST_F(DoctorMonitoring, APluginThatCannotExamineIsUnknown)
{
    const Result ended = run({"--check", "--only", "x"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.output, "DMPCLAIM UNKNOWN - 'x' is no code of a finding; 'dmpclaim doctor "
                            "--codes' lists them\n");
    EXPECT_EQ(ended.errors, "");
}

TEST_F(DoctorMonitoring, WhatDoesNotGoTogetherIsRefused)
{
    const std::pair<std::vector<std::string>, const char*> refused[] = {
        {{"--metrics", "-J"}, "dmpclaim: --metrics does not go with --json\n"},
        {{"--codes", "--metrics"}, "dmpclaim: --codes does not go with --metrics\n"},
        {{"--output-file", "x"}, "dmpclaim: --output-file is for --metrics\n"},
        {{"-j", "0"}, "dmpclaim: --jobs takes a number from 1 to 64, not '0'\n"},
        {{"--timeout", "1.5"}, "dmpclaim: --timeout takes a number from 1 to 86400, not '1.5'\n"},
        {{"--ignore", "no-path,"}, "dmpclaim: '' is no code of a finding; "}};
    for (const auto& [arguments, message] : refused) {
        const Result ended = run(arguments);
        EXPECT_EQ(ended.status, 2) << message;
        EXPECT_THAT(ended.errors, StartsWith(message));
        EXPECT_EQ(ended.output, "") << message;
    }
}

TEST_F(DoctorMonitoring, MetricsReplaceAFileThatPrometheusReads)
{
    addMap();
    loseAPath();
    std::ofstream(metricsPath()) << "old\n";
    const Result ended = run({"--metrics", "--output-file", metricsPath()});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output, "");
    const std::string metrics = textOf(metricsPath());
    EXPECT_THAT(splitLines(metrics),
                AllOf(Contains("dmpclaim_disk_lost_paths{device=\"/dev/mapper/mpatha\",driver="
                               "\"device-mapper\"} 1"),
                      Contains("dmpclaim_disk_usable_paths{device=\"arr0_17\",driver=\"kodmp\"} 2"),
                      Contains("dmpclaim_findings{code=\"one-path-left\",severity=\"warning\"} 1"),
                      Contains("dmpclaim_doctor_complete 1"), Not(Contains("old"))));
    EXPECT_EQ(Process({PROMTOOL, "check", "metrics"}).finish(metrics).status, 0);
    EXPECT_THAT(run({"--metrics"}).output, StartsWith("# HELP dmpclaim_disks "));
}

TEST_F(DoctorMonitoring, MetricsThatCannotBeWrittenAreAFailure)
{
    const Result ended = run({"--metrics", "--output-file", "/nonexistent/dmpclaim.prom"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.errors, StartsWith("dmpclaim: cannot write '/nonexistent/dmpclaim.prom'"));
}

TEST_F(DoctorMonitoring, AnInterruptedRunReplacesNoMetrics)
{
    useScenario("hanging-tool");
    machine.addDeviceWithNode("sdb");
    std::ofstream(metricsPath()) << "old\n";
    Process process(doctor({"--metrics", "--output-file", metricsPath()}));
    while (log().empty() && !process.endsWithin(5))
        continue;
    process.signal(SIGTERM);
    EXPECT_EQ(process.finish().status, 143);
    EXPECT_EQ(textOf(metricsPath()), "old\n");
}

TEST_F(DoctorMonitoring, MetricsOfARunThatTimedOutSaySo)
{
    useScenario("hanging-tool");
    machine.addDeviceWithNode("sdb");
    EXPECT_THAT(splitLines(run({"--metrics", "--timeout", "1"}).output),
                AllOf(Contains("dmpclaim_doctor_complete 0"),
                      Contains("dmpclaim_findings{code=\"time-limit\",severity=\"error\"} 1")));
}

TEST_F(DoctorMonitoring, TheTimeLimitHoldsForToolsThatHangAndFlood)
{
    machine.addDeviceWithNode("sdb");
    for (const Json& fault :
         {Json{{"subcommand", "getdmpnode"}, {"hang", true}},
          Json{{"subcommand", "getsubpaths"}, {"hang", true}, {"late", true}}}) {
        useFault(fault);
        Process process(doctor({"--check", "--timeout", "1"}));
        EXPECT_FALSE(process.endsWithin(900));
        EXPECT_TRUE(process.endsWithin(4000));
        EXPECT_EQ(process.finish().status, 3);
    }
}

TEST_F(DoctorMonitoring, TheTimeLimitHoldsForToolsThatIgnoreTermAndFlood)
{
    machine.addDeviceWithNode("sdb");
    const std::filesystem::path tools = folder() / "tools";
    std::filesystem::create_directory(tools);
    for (const char* work : {"while :; do sleep 1; done", "yes"}) {
        for (const char* tool : {"kodmpadm", "kodisk"}) {
            std::ofstream(tools / tool) << "#!/bin/sh\ntrap '' TERM\n" << work << '\n';
            permissions(tools / tool, std::filesystem::perms(0755));
        }
        std::vector<std::string> command = doctor({"--check", "--timeout", "1"});
        std::replace(command.begin(), command.end(), std::string(SIMULATOR_TOOLS), tools.string());
        Process process(command);
        EXPECT_TRUE(process.endsWithin(8000)) << work;
        const Result ended = process.finish();
        EXPECT_EQ(ended.errors, "");
        EXPECT_THAT(ended.output, AnyOf(StartsWith("DMPCLAIM UNKNOWN - the time limit of 1 s "),
                                        StartsWith("DMPCLAIM CRITICAL - tool-floods: ")));
    }
}

TEST_F(DoctorMonitoring, ManyDisksAreAskedAboutAtOnce)
{
    Json state = scenario("healthy");
    state["faults"] = Json::array({{{"subcommand", "getdmpnode"}, {"delay_ms", 300}}});
    write(state);
    for (const char* name : {"sdb", "sdc", "sdd", "sde", "sdf", "sdg"})
        machine.addDeviceWithNode(name);
    const auto begin = std::chrono::steady_clock::now();
    const Result ended = run({"-j", "6"});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(6 * 300));
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(splitLines(ended.output), Contains(StartsWith("ok       active-path /dev/sdc: ")));
}

TEST_F(DoctorMonitoring, ATerminalShowsProgressAfterASecond)
{
    useFault({{"subcommand", "getdmpnode"}, {"delay_ms", 1500}});
    machine.addDeviceWithNode("sdb");
    const Terminal terminal;
    const auto onTerminal = [&](const std::string& shellLine) {
        Setting setting;
        setting.output = terminal.descriptor();
        Process({"bash", "-c", shellLine + " 2>&1"}, setting).finish();
        return terminal.written();
    };
    std::string script;
    for (const std::string& word : doctor({"-q"})) {
        script += " '";
        for (const char c : word)
            script += c == '\'' ? std::string("'\\''") : std::string(1, c);
        script += '\'';
    }
    EXPECT_THAT(onTerminal(script), HasSubstr("\r0 of 1 disks asked about\x1b[K"));
    useScenario("healthy");
    EXPECT_EQ(onTerminal(script), "");
}

} // namespace
