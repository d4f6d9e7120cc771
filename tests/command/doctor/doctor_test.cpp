// The command as a process, on a made-up machine with the simulated tools.
#include "fake_machine.h"
#include "tests/command/namespaced_tools.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Mounts the machine's folders over the real ones. Programs also need /dev/null there.
constexpr char layOver[] = R"(set -e
touch "$1/null" && mount --bind /dev/null "$1/null"
mount --rbind "$1" /dev
mount --bind "$2" /sys/class/block
mount --bind "$3" /proc/devices
shift 3
exec "$@")";

class Doctor : public NamespacedTools {
protected:
    std::vector<std::string> doctor(const std::vector<std::string>& arguments) const
    {
        const command::SystemPaths& paths = machine.paths();
        std::vector<std::string> command{"sh",
                                         "-c",
                                         layOver,
                                         "sh",
                                         paths.dev,
                                         paths.sysfsBlock,
                                         paths.drivers,
                                         "env",
                                         "--default-signal=INT,TERM,HUP,QUIT,PIPE",
                                         "LD_PRELOAD=" FAKE_NODES,
                                         "ASAN_OPTIONS=" + sanitizerOptions,
                                         DMPCLAIM_COMMAND,
                                         "doctor"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return inNamespace(command);
    }

    Result run(const std::vector<std::string>& arguments = {}, std::string_view input = {}) const
    {
        return Process(doctor(arguments)).finish(input);
    }

    Json report(std::vector<std::string> arguments = {}) const
    {
        arguments.emplace_back("-J");
        const Result ended = run(arguments);
        EXPECT_EQ(ended.errors, "");
        return Json::parse(ended.output);
    }

    FakeMachine machine;
    std::string sanitizerOptions = "verify_asan_link_order=0";
};

TEST_F(Doctor, AHealthyMachine)
{
    machine.addDriver("  8 sd");
    for (const char* name : {"sdb", "sdb1", "sdc", "nvme0n1"})
        machine.addDeviceWithNode(name);
    const Result ended = run();
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.output, "ok       /usr/sbin/kodmpadm: can be run\n"
                            "ok       /usr/sbin/kodisk: can be run\n"
                            "ok       /dev/sdb: node arr0_17, active path /dev/sdb\n"
                            "ok       /dev/sdc: node arr0_17, active path /dev/sdb\n"
                            "ok       native: in the kernel; owns 3 of 4 block devices\n"
                            "ok       powerpath: not in the kernel; owns 0 of 4 block devices\n"
                            "ok       device-mapper: not in the kernel; owns 0 of 4 block devices\n"
                            "Nothing is wrong.\n");
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(log(), Not(Contains(HasSubstr("scandisks"))));
}

TEST_F(Doctor, WarningsHaveAStatusOfTheirOwn)
{
    machine.addDeviceWithNode("sdx");
    const Result ended = run();
    EXPECT_EQ(ended.status, 64);
    EXPECT_THAT(ended.output, HasSubstr("\nwarning  /dev/sdx: status 1, 'kodmpadm: ERROR disk "));
    EXPECT_THAT(ended.output, testing::EndsWith("\n1 warning\n"));
}

TEST_F(Doctor, ErrorsHaveAStatusOfTheirOwn)
{
    machine.addDeviceWithNode("sdx");
    machine.addDevice("emcpowera");
    const Result ended = run();
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, testing::EndsWith("\n1 error, 1 warning\n"));
    EXPECT_EQ(run({"-J"}).status, 32);
}

TEST_F(Doctor, AsksAboutTheGivenPathsOnly)
{
    for (const char* name : {"sdb", "sdc"})
        machine.addDeviceWithNode(name);
    machine.addMapWithNode("mpatha", "mpath-1");
    const Result ended = run({"/dev/mapper/mpatha", "-"}, "/dev/sdc\n");
    EXPECT_THAT(splitLines(ended.output),
                AllOf(Contains("ok       /dev/sdc: node arr0_17, active path /dev/sdb"),
                      Not(Contains(HasSubstr("/dev/sdb: "))),
                      Contains("note     /dev/mapper/mpatha: no native path: the volume manager "
                               "is not asked")));
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Doctor, ANameThatIsTooLongForAToolDoesNotKeepItFromTheOthers)
{
    machine.addDeviceWithNode("sdb");
    const Result ended = run({"-"}, "/dev/sd" + std::string(200'000, 'x') + "\n/dev/sdb\n");
    EXPECT_THAT(splitLines(ended.output),
                Contains("ok       /dev/sdb: node arr0_17, active path /dev/sdb"));
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
            Process({"bash", "-c", script, machine.paths().sysfsBlock, machine.paths().dev})
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
    EXPECT_THAT(splitLines(ended.output),
                AllOf(Contains("ok       /dev/sdc: node arr0_17, active path /dev/sdb"),
                      Contains("warning  /dev/sdc: does not exist, or this user cannot see it")));
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
    EXPECT_THAT(ended.output, HasSubstr("\nerror    /dev/sdc: node arr0_17, active path /dev/sdb, "
                                        "which is no block"));
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
    EXPECT_EQ(found["findings"][2], Json({{"state", "ok"},
                                          {"subject", "/dev/sdb"},
                                          {"text", "node arr0_17, active path /dev/sdb"},
                                          {"advice", nullptr}}));
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

TEST_F(Doctor, JsonHoldsTheTraceOfNamesAndTools)
{
    machine.addDeviceWithNode("sdb");
    const Json found = report();
    std::vector<std::string> lines;
    for (const Json& line : found["trace"])
        lines.push_back(line["level"].dump() + ' ' + line["text"].get<std::string>());
    EXPECT_THAT(lines, Contains(StartsWith("6 Entering Function getClaimModule")));
    EXPECT_THAT(lines, Contains(StartsWith("6 Entering Function isCommandAvailable")));
    EXPECT_THAT(lines, Contains(StartsWith("6 Command [/usr/sbin/kodmpadm   getdmpnode ")));
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
    EXPECT_THAT(recorded["findings"].dump(), HasSubstr("nodename=sdx"));
}

TEST_F(Doctor, AnAnswerThatChangesIsReplayedAsItWas)
{
    machine.addDeviceWithNode("sdb");
    useScenario("fault-signal");
    const std::vector<std::string> twice{"/dev/sdb", "/dev/sdb"};
    const Json recorded = report(twice);
    write(Json{{"replay", recorded["commands"]}});
    EXPECT_EQ(report(twice)["findings"], recorded["findings"]);
    EXPECT_THAT(recorded["findings"].dump(), HasSubstr("signal 11 ended it"));
}

TEST_F(Doctor, ADiskWithoutAnEnabledPathIsAWarning)
{
    machine.addDeviceWithNode("sdc");
    useScenario("only-primary-left");
    EXPECT_EQ(run().status, 64);
}

TEST_F(Doctor, AReportsFileCanBeReplayed)
{
    machine.addDeviceWithNode("sdb");
    const Result recorded = run({"-J"});
    std::ofstream(folder() / "case.json") << recorded.output;
    write(Json{{"replay", "case.json"}});
    EXPECT_EQ(report()["findings"], Json::parse(recorded.output)["findings"]);
}

TEST_F(Doctor, AnInterruptEndsTheToolThatHangs)
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
    EXPECT_EQ(ended.output, "ok       /usr/sbin/kodmpadm: can be run\n"
                            "ok       /usr/sbin/kodisk: can be run\n");
    EXPECT_EQ(log().size(), 1U);
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
