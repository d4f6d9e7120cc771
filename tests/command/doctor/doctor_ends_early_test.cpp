// Examinations that a signal or the time limit ends.
#include <csignal>

#include "doctor_command.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::StartsWith;

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
                            "error    interrupted dmpclaim doctor: a signal came; 1 of 1 disk "
                            "left\n"
                            "         unexamined: /dev/sdb\n"
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
                                         "disks left unexamined: /dev/sdc | disks=1;;;;"));
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
