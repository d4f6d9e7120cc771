// The command as a process, on a made-up machine with the simulated tools.
#include <map>

#include "doctor_command.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(Doctor, AHealthyMachine)
{
    machine.addDriver("  8 sd");
    for (const char* name : {"sdb", "sdb1", "sdc", "nvme0n1"})
        machine.addDeviceWithNode(name);
    const Result ended = run();
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.output,
              "ok       tool-ready /usr/sbin/kodmpadm: can be run\n"
              "ok       tool-ready /usr/sbin/kodisk: can be run\n"
              "ok       active-path /dev/sdb: node arr0_17, active path /dev/sdb\n"
              "ok       active-path /dev/sdc: node arr0_17, active path /dev/sdb\n"
              "ok       paths-usable arr0_17: 2 paths, sdb carries the I/O\n"
              "ok       driver-devices native: in the kernel; owns 3 of 4 block devices\n"
              "ok       driver-devices powerpath: not in the kernel; owns 0 of 4 block devices\n"
              "ok       driver-devices device-mapper: not in the kernel; owns 0 of 4 block\n"
              "         devices\n"
              "Nothing is wrong.\n");
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(log(), Not(Contains(HasSubstr("scandisks"))));
}

TEST_F(Doctor, WarningsHaveAStatusOfTheirOwn)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    useScenario("failed-over");
    const Result ended = run();
    EXPECT_EQ(ended.status, 64);
    EXPECT_THAT(ended.output, HasSubstr("\nwarning  one-path-left arr0_17: sdb failed; 1 of 2 "
                                        "paths is left\n"));
    EXPECT_THAT(ended.output, testing::EndsWith("\n1 warning\n"));
}

TEST_F(Doctor, ErrorsHaveAStatusOfTheirOwn)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    machine.addDevice("emcpowera");
    useScenario("failed-over");
    const Result ended = run();
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, testing::EndsWith("\n1 error, 1 warning\n"));
    EXPECT_EQ(run({"-J"}).status, 32);
}

TEST_F(Doctor, ALocalDiskBesideTheVolumeManagersIsANote)
{
    machine.addDeviceWithNode("sda");
    machine.addDeviceWithNode("sdb");
    const Result ended = run();
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.output, HasSubstr("\nnote     disk-not-held /dev/sda: the volume manager "));
    EXPECT_EQ(run({"/dev/sda"}).status, 0); // sdb bears witness that the tools work
    EXPECT_EQ(log().size(), 3U + 3U);
}

TEST_F(Doctor, AToolThatKnowsNoDiskIsAnError)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    useScenario("failing-tool");
    const Result ended = run();
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, HasSubstr("\nerror    tool-failed /usr/sbin/kodmpadm getdmpnode: "
                                        "ended with status 3, 'ERROR\n"));
    EXPECT_THAT(ended.output, HasSubstr("it kept 2 disks from being\n"));
    EXPECT_EQ(run({"/dev/sdb"}).status, 32);
}

TEST_F(Doctor, AsksAboutTheGivenPathsOnly)
{
    for (const char* name : {"sdb", "sdc"})
        machine.addDeviceWithNode(name);
    machine.addMapWithNode("mpatha", "mpath-1");
    const Result ended = run({"/dev/mapper/mpatha", "-"}, "/dev/sdc\n");
    EXPECT_THAT(splitLines(ended.output),
                AllOf(Contains("ok       active-path /dev/sdc: node arr0_17, active path /dev/sdb"),
                      Not(Contains(HasSubstr("/dev/sdb: "))),
                      Contains(StartsWith("note     not-asked /dev/mapper/mpatha: no native "))));
    EXPECT_EQ(log().size(), 2U);
}

TEST_F(Doctor, APartitionIsAskedAboutThroughItsDisk)
{
    for (const char* name : {"sdb", "sdb1", "sdb2"})
        machine.addDeviceWithNode(name);
    const Result ended = run({"/dev/sdb1", "/dev/sdb2", "/dev/sdb"});
    EXPECT_THAT(splitLines(ended.output),
                Contains("ok       active-path /dev/sdb: node arr0_17, active path /dev/sdb"));
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(log().size(), 2U);
}

TEST_F(Doctor, WithoutANativePathTheToolsAreNotLookedAt)
{
    machine.addMapWithNode("mpatha", "mpath-1", {});
    std::filesystem::remove(machine.dev("mapper/mpatha"));
    useScenario("failing-tool");
    const Result ended = run({"--quiet", "/dev/mapper/mpatha"});
    EXPECT_THAT(splitLines(ended.output),
                ElementsAre("error    no-path /dev/mapper/mpatha: it has no path",
                            StartsWith("         To do: "), StartsWith("         Type: "),
                            StartsWith("error    node-missing /dev/mapper/mpatha: "),
                            "         missing", StartsWith("         To do: "),
                            "         Type: dmsetup mknodes -- mpatha"));
    EXPECT_TRUE(log().empty());
}

TEST_F(Doctor, ANameThatIsTooLongForAToolDoesNotKeepItFromTheOthers)
{
    machine.addDeviceWithNode("sdb");
    const Result ended = run({"-"}, "/dev/sd" + std::string(200'000, 'x') + "\n/dev/sdb\n");
    EXPECT_THAT(splitLines(ended.output),
                Contains("ok       active-path /dev/sdb: node arr0_17, active path /dev/sdb"));
    EXPECT_THAT(ended.output, HasSubstr("longer than a path can"));
    EXPECT_EQ(ended.status, 32);
}

/// What is kept of each device takes some 400 bytes. Its explanation would take 2,600 more, its
/// trace lines 12,000. A shell makes the devices: doctor begins with the memory of the test.
TEST_F(Doctor, TextKeepsNeitherTraceNorExplanations)
{
    const auto peakKilobytesWith = [&](const std::string& count) {
        const std::string names = "emcpower{1.." + count + "}";
        const std::string script = "cd \"$0\" && mkdir -p " + names + " && cd \"$1\" && touch " +
                                   names + " && chmod 1600 " + names;
        const Result made =
            Process({"bash", "-c", script, machine.roots().blockFolder(), machine.roots().dev})
                .finish();
        EXPECT_EQ(made.status, 0) << made.errors;
        const Result ended = run();
        EXPECT_THAT(ended.output, HasSubstr("owns " + count + " of " + count + " "));
        EXPECT_EQ(ended.status, 0);
        return ended.peakKilobytes;
    };
    // Without these options the address sanitizer, if there is one, keeps freed memory.
    sanitizerOptions += ":quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
    const long peak = peakKilobytesWith("1000");
    EXPECT_LT(peakKilobytesWith("3000"), peak + 4000);
}

TEST_F(Doctor, AGivenDiskThatIsGoneIsAWarning)
{
    machine.addDeviceWithNode("sdb");
    const Result ended = run({"/dev/sdc"});
    EXPECT_THAT(
        splitLines(ended.output),
        AllOf(Contains("ok       active-path /dev/sdc: node arr0_17, active path /dev/sdb"),
              Contains(
                  "warning  device-missing /dev/sdc: does not exist, or this user cannot see it")));
    EXPECT_EQ(ended.status, 64);
    EXPECT_EQ(run({"/dev/nvme0n1"}).status, 64);
    EXPECT_EQ(run({"-"}, "/dev/sdc\n").status, 64);
    EXPECT_EQ(run({"/dev/sdb"}).status, 0);
}

TEST_F(Doctor, AFileInTheActivePathsPlaceIsAnError)
{
    machine.addDeviceWithNode("sdc");
    machine.addFile("sdb");
    const Result ended = run();
    EXPECT_THAT(ended.output,
                HasSubstr("\nerror    active-path-no-device /dev/sdc: node arr0_17, "));
    EXPECT_EQ(ended.status, 32);
}

TEST_F(Doctor, JsonHoldsWhatASupportEngineerNeeds)
{
    machine.addDeviceWithNode("sdb");
    machine.addMapWithNode("mpatha", "mpath-1");
    const Json found = report();
    EXPECT_EQ(found["schema"], 1);
    EXPECT_EQ(found["versions"]["dmpclaim"], DMPCLAIM_VERSION);
    EXPECT_THAT(found["versions"]["kernel"].get<std::string>(), StartsWith("Linux "));
    const std::string release = textOf("/etc/os-release");
    const Json& system = found["versions"]["system"];
    EXPECT_EQ(system.is_string(), release.find("PRETTY_NAME=\"") != std::string::npos);
    if (system.is_string()) {
        EXPECT_THAT(release, HasSubstr("PRETTY_NAME=\"" + system.get<std::string>() + "\"\n"));
    }
    EXPECT_EQ(found["modules"],
              Json({{{"module", "native"}, {"prefixes", {"/dev/sd"}}},
                    {{"module", "powerpath"}, {"prefixes", {"/dev/emcpower"}}},
                    {{"module", "device-mapper"}, {"prefixes", {"/dev/mapper/"}}}}));
    EXPECT_EQ(found["interrupted"], false);
    EXPECT_EQ(found["findings"][2], Json({{"code", "active-path"},
                                          {"severity", "ok"},
                                          {"device", "/dev/sdb"},
                                          {"text", "node arr0_17, active path /dev/sdb"},
                                          {"advice", nullptr},
                                          {"remedy", nullptr}}));
    ASSERT_EQ(found["disks"].size(), 2U);
    EXPECT_EQ(found["disks"][0],
              Json({{"device", "arr0_17"},
                    {"driver", "kodmp"},
                    {"node", nullptr},
                    {"paths",
                     {{{"name", "sdb"}, {"state", "active"}, {"used", true}},
                      {{"name", "sdc"}, {"state", "standby"}, {"used", false}}}}}));
    EXPECT_THAT(found["recorded"].get<std::string>(),
                testing::MatchesRegex("20[0-9-]+T[0-9]{2}:[0-9]{2}:[0-9]{2}[+-][0-9]{4}"));
    EXPECT_EQ(found["maps"], Json({{{"name", "mpatha"}, {"uuid", "mpath-1"}}}));
    ASSERT_EQ(found["names"].size(), 3U);
    EXPECT_EQ(found["names"][1]["name"], "/dev/mapper/mpatha");
    EXPECT_EQ(found["names"][1]["warnings"][0]["code"], "other-partition-names");
    ASSERT_EQ(found["commands"].size(), 2U);
    EXPECT_EQ(found["commands"][0]["command"], "/usr/sbin/kodmpadm   getdmpnode  nodename=sdb");
    EXPECT_EQ(found["commands"][0]["output"], Json(splitLines(healthyNode)));
}

TEST_F(Doctor, JsonHoldsTheTraceOfTheToolsRuns)
{
    machine.addDeviceWithNode("sdb");
    const auto traceOf = [this](const std::vector<std::string>& arguments) {
        std::vector<std::string> lines;
        const Json document = Json::parse(run(arguments).output);
        for (const Json& line : document["trace"])
            lines.push_back(line["level"].dump() + ' ' + line["text"].get<std::string>());
        return lines;
    };
    const std::vector<std::string> tools = traceOf({"-J"});
    EXPECT_THAT(tools, Contains(StartsWith("6 Entering Function isCommandAvailable")));
    EXPECT_THAT(tools, Contains(StartsWith("6 Command [/usr/sbin/kodmpadm   getdmpnode ")));
    EXPECT_THAT(tools, Not(Contains(HasSubstr("getClaimModule"))));
    const std::vector<std::string> all =
        traceOf({"-J", "--trace-file", (folder() / "trace").string()});
    EXPECT_THAT(all, Contains(StartsWith("6 Entering Function getClaimModule")));
    EXPECT_THAT(all, Contains(StartsWith("6 Command [/usr/sbin/kodmpadm   getdmpnode ")));
}

TEST_F(Doctor, TraceLinesGoWhereTheUserWantsThem)
{
    machine.addDeviceWithNode("sdb");
    EXPECT_THAT(run({"--trace"}).errors, HasSubstr(" 6 Command [/usr/sbin/kodmpadm "));
    machine.addDeviceWithNode("sdx");
    const Result ended = run({"--trace=2"});
    EXPECT_THAT(ended.errors, HasSubstr(" 2 Command [/usr/sbin/kodmpadm "));
    EXPECT_THAT(ended.errors, Not(HasSubstr("] 6 ")));
    EXPECT_EQ(run({"--trace-file", "/nowhere/trace"}).status, 2);
}

TEST_F(Doctor, TheReportCanBeReplayed)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdx");
    const Json recorded = report();
    write(Json{{"replay", recorded["commands"]}});
    const Json replayed = report();
    EXPECT_EQ(replayed["findings"], recorded["findings"]);
    EXPECT_EQ(replayed["commands"], recorded["commands"]);
    EXPECT_THAT(recorded["findings"].dump(), HasSubstr("device=sdx"));
}

TEST_F(Doctor, AnAnswerThatChangesIsReplayedAsItWas)
{
    machine.addDeviceWithNode("sdb");
    useScenario("fault-signal");
    const std::vector<std::string> both{"/dev/sdb", "/dev/sdc"};
    machine.addDeviceWithNode("sdc");
    const Json recorded = report(both);
    write(Json{{"replay", recorded["commands"]}});
    EXPECT_EQ(report(both)["findings"], recorded["findings"]);
    EXPECT_THAT(recorded["findings"].dump(), HasSubstr("was ended by signal 11"));
}

TEST_F(Doctor, ADiskWithoutAnEnabledPathIsAnError)
{
    machine.addDeviceWithNode("sdc");
    useScenario("only-primary-left");
    const Result ended = run();
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, HasSubstr("\nerror    no-path arr0_17: no path is left: "));
}

TEST_F(Doctor, AReportsFileCanBeReplayed)
{
    machine.addDeviceWithNode("sdb");
    const Result recorded = run({"-J"});
    std::ofstream(folder() / "case.json") << recorded.output;
    write(Json{{"replay", "case.json"}});
    EXPECT_EQ(report()["findings"], Json::parse(recorded.output)["findings"]);
}

TEST_F(Doctor, AnInterruptEndsTheToolThatHangsAndTheReportSaysSo)
{
    useScenario("hanging-tool");
    machine.addDeviceWithNode("sdb");
    Process process(doctor({}));
    while (log().empty() && !process.endsWithin(5))
        continue;
    process.signal(SIGTERM);
    EXPECT_TRUE(process.endsWithin(3000));
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 143);
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.output, "ok       tool-ready /usr/sbin/kodmpadm: can be run\n"
                            "ok       tool-ready /usr/sbin/kodisk: can be run\n"
                            "error    interrupted dmpclaim doctor: a signal came; 1 of 1 disks "
                            "were not\n"
                            "         examined: /dev/sdb\n"
                            "Not everything was examined.\n");
    EXPECT_EQ(log().size(), 1U);
}

/// The tools of `healthy`, of which the second question for a node hangs.
Json hangingAtTheSecondDisk(Json state)
{
    state["faults"] = Json::array({{{"subcommand", "getdmpnode"}, {"call", 2}, {"hang", true}}});
    return state;
}

TEST_F(Doctor, AnInterruptedReportIsCompleteAsFarAsItGot)
{
    write(hangingAtTheSecondDisk(scenario("healthy")));
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    Process process(doctor({"-J"}));
    while (log().size() < 3 && !process.endsWithin(5))
        continue;
    process.signal(SIGINT);
    const Result ended = process.finish();
    EXPECT_EQ(ended.status, 130);
    const Json found = Json::parse(ended.output);
    EXPECT_EQ(found["interrupted"], true);
    EXPECT_EQ(found["commands"].size(), 2U);
    EXPECT_EQ(found["findings"][2]["code"], "active-path");
    EXPECT_EQ(found["findings"][3]["code"], "interrupted");
}

TEST_F(Doctor, TheTimeLimitEndsTheToolAndTheRestIsExamined)
{
    write(hangingAtTheSecondDisk(scenario("healthy")));
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    const Result ended = run({"--timeout", "1"});
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(splitLines(ended.output),
                AllOf(Contains(StartsWith("ok       active-path /dev/sdb: ")),
                      Contains(StartsWith("error    time-limit dmpclaim doctor: the time limit of "
                                          "1 s passed; 1 of 2")),
                      Contains(StartsWith("ok       paths-usable arr0_17: ")),
                      Contains("Not everything was examined.")));
    write(hangingAtTheSecondDisk(scenario("healthy")));
    const Result check = run({"--check", "--timeout", "1"});
    EXPECT_EQ(check.status, 3);
    EXPECT_THAT(check.output, StartsWith("DMPCLAIM UNKNOWN - the time limit of 1 s passed; 1 of 2 "
                                         "disks were not examined: /dev/sdc | disks=1;;;;"));
}

TEST_F(Doctor, EachScenarioHasItsCodes)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    const std::vector<std::string> limit{"time-limit"};
    const std::map<std::string, std::vector<std::string>> codes{
        {"healthy", {}},
        {"any-order", {"active-path-missing", "active-path-missing", "path-lost"}},
        {"failed-over", {"one-path-left"}},
        {"failing-tool", {"tool-failed"}},
        {"fault-blank-lines", {}},
        {"fault-crlf", {}},
        {"fault-cut-short", {"tool-failed"}},
        {"fault-delay", {}},
        {"fault-exit-status", {"tool-failed"}},
        {"fault-flood", {"tool-floods"}},
        {"fault-hang-after-output", limit},
        {"fault-late-signal", {"tool-failed"}},
        {"fault-many-spaces", {}},
        {"fault-no-header", {"tool-unreadable"}},
        {"fault-no-rule", {"no-disk-held"}},
        {"fault-noise", {}},
        {"fault-note", {"tool-unreadable"}},
        {"fault-signal", {"tool-failed"}},
        {"fault-tabs", {}},
        {"hanging-tool", limit},
        {"no-active-path", {"path-lost"}},
        {"no-path-left", {"no-path"}},
        {"only-primary-left", {"no-path"}},
        {"replay", {"tool-failed", "tool-failed"}},
        {"stale-paths", {}},
        {"stale-repaired-by-refreshing", {"tool-failed"}},
        {"stale-repaired-by-waiting", {"tool-failed"}},
        {"unknown-disk", {}}};
    for (const auto& file : std::filesystem::directory_iterator(scenarios())) {
        const std::string name = file.path().stem();
        ASSERT_EQ(codes.count(name), 1U) << name;
        useScenario(name);
        std::filesystem::remove(logPath());
        std::vector<std::string> found;
        const Result ended = run({"-J", "-q", "--timeout", codes.at(name) == limit ? "1" : "60"});
        const Json document = Json::parse(ended.output);
        for (const Json& finding : document["findings"])
            found.push_back(finding["code"]);
        EXPECT_EQ(found, codes.at(name)) << name;
    }
}

TEST_F(Doctor, EveryInterruptHasItsStatus)
{
    useScenario("hanging-tool");
    machine.addDeviceWithNode("sdb");
    const std::pair<int, int> statuses[] = {
        {SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}, {SIGQUIT, 131}};
    for (const auto& [signal, status] : statuses) {
        Process process(doctor({}));
        process.receiveLine();
        process.receiveLine();
        process.signal(signal);
        EXPECT_TRUE(process.endsWithin(3000));
        EXPECT_EQ(process.finish().status, status);
    }
}

} // namespace
