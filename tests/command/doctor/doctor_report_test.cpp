// The JSON that a support engineer asks for, its trace and its replay.
#include <fstream>

#include "doctor_command.h"
#include "names/drivers.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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
    EXPECT_EQ(found["modules"].size(), command::drivers().size());
    EXPECT_EQ(found["modules"][0], Json({{"module", "native"}, {"prefixes", {"/dev/sd"}}}));
    EXPECT_EQ(found["interrupted"], false);
    EXPECT_EQ(found["findings"][2], Json({{"code", "active-path"},
                                          {"severity", "ok"},
                                          {"device", "/dev/sdb"},
                                          {"text", "node arr0_17, active path /dev/sdb"},
                                          {"advice", nullptr},
                                          {"remedy", nullptr}}));
    EXPECT_THAT(found["recorded"].get<std::string>(),
                testing::MatchesRegex("20[0-9-]+T[0-9]{2}:[0-9]{2}:[0-9]{2}[+-][0-9]{4}"));
    EXPECT_EQ(found["maps"], Json({{{"name", "mpatha"}, {"uuid", "mpath-1"}}}));
    ASSERT_EQ(found["names"].size(), 3U);
    EXPECT_EQ(found["names"][1]["name"], "/dev/mapper/mpatha");
    EXPECT_EQ(found["names"][1]["warnings"][0]["code"], "other-partition-names");
}

TEST_F(Doctor, TraceLinesGoToAFileAndNotToStandardError)
{
    machine.addDeviceWithNode("sdb");
    const std::string file = logPath() + ".trace";
    EXPECT_EQ(run({"--trace=6", "--trace-file", file}).errors, "");
    EXPECT_THAT(textOf(file), HasSubstr(" 6 Entering Function getClaimModule "));
}

TEST_F(Doctor, JsonHoldsTheDisksAndTheCommandsThatFoundThem)
{
    machine.addDeviceWithNode("sdb");
    machine.addMapWithNode("mpatha", "mpath-1");
    const Json found = report();
    ASSERT_EQ(found["disks"].size(), 2U);
    EXPECT_EQ(found["disks"][0],
              Json({{"device", "arr0_17"},
                    {"driver", "kodmp"},
                    {"node", nullptr},
                    {"paths",
                     {{{"name", "sdb"}, {"state", "active"}, {"used", true}},
                      {{"name", "sdc"}, {"state", "standby"}, {"used", false}}}}}));
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

TEST_F(Doctor, AReportsFileCanBeReplayed)
{
    machine.addDeviceWithNode("sdb");
    const Result recorded = run({"-J"});
    std::ofstream(folder() / "case.json") << recorded.output;
    write(Json{{"replay", "case.json"}});
    EXPECT_EQ(report()["findings"], Json::parse(recorded.output)["findings"]);
}

} // namespace
