// The command as a process, on a made-up machine with the simulated tools.
#include "doctor_command.h"
#include "tests/command/scenario_answers.h"

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
    for (const char* name : {"sdb", "sdb1", "sdc", "vda"})
        machine.addDeviceWithNode(name);
    const Result ended = run();
    EXPECT_EQ(ended.errors, "");
    EXPECT_THAT(
        ended.output,
        StartsWith("ok       tool-ready /usr/sbin/kodmpadm: can be run\n"
                   "ok       tool-ready /usr/sbin/kodisk: can be run\n"
                   "ok       active-path /dev/sdb: node arr0_17, active path /dev/sdb\n"
                   "ok       active-path /dev/sdc: node arr0_17, active path /dev/sdb\n"
                   "ok       paths-usable arr0_17: 2 paths, sdb carries the I/O\n"
                   "ok       driver-devices native: in the kernel; owns 3 of 4 block devices\n"
                   "ok       driver-devices powerpath: not in the kernel; owns 0 of 4 block "
                   "devices\n"
                   "ok       driver-devices device-mapper: not in the kernel; owns 0 of 4 block\n"
                   "         devices\n"));
    EXPECT_THAT(ended.output, testing::EndsWith("\nNothing is wrong.\n"));
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
    EXPECT_EQ(run({"/dev/vda"}).status, 64);
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

TEST_F(Doctor, ADiskWithoutAnEnabledPathIsAnError)
{
    machine.addDeviceWithNode("sdc");
    useScenario("only-primary-left");
    const Result ended = run();
    EXPECT_EQ(ended.status, 32);
    EXPECT_THAT(ended.output, HasSubstr("\nerror    no-path arr0_17: no path is left: "));
}

TEST_F(Doctor, EachScenarioHasItsCodes)
{
    machine.addDeviceWithNode("sdb");
    machine.addDeviceWithNode("sdc");
    for (const ScenarioAnswer& answer : scenarios::answers) {
        useScenario(answer.scenario);
        std::filesystem::remove(logPath());
        std::vector<std::string> found;
        const Result ended = run({"-J", "-q", "--timeout", answer.active == nullptr ? "1" : "60"});
        const Json document = Json::parse(ended.output);
        for (const Json& finding : document["findings"])
            found.push_back(finding["code"]);
        EXPECT_EQ(found, answer.codes) << answer.scenario;
    }
}

} // namespace
