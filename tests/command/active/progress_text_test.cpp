#include "active/progress_text.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using command::Activity;
using command::Progress;
using command::Timeline;
using kovm::waitingPolicy;

constexpr Timeline::Clock::time_point start{100s};

std::string text(const Progress& progress, std::chrono::milliseconds passed = 0s)
{
    return progressText(progress, start + passed);
}

Progress running(const std::string& command)
{
    return {0, 1, Activity{"/dev/sdc", 2, command, false, start, start}, waitingPolicy};
}

Progress waiting(int attempt)
{
    return {0, 1, Activity{"/dev/sdc", attempt, "", true, start, start}, waitingPolicy};
}

TEST(ProgressText, ARunningToolIsNamedWithItsTime)
{
    const Progress progress = running("/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_EQ(text(progress, 3900ms),
              "/dev/sdc: attempt 2 of 4, running kodmpadm getdmpnode for 3 s");
    EXPECT_EQ(text(running("/usr/sbin/kodisk   scandisks ")),
              "/dev/sdc: attempt 2 of 4, running kodisk scandisks for 0 s");
}

TEST(ProgressText, APauseTellsTheTimeLeft)
{
    EXPECT_EQ(text(waiting(1)), "/dev/sdc: attempt 1 of 4, next one in 5 s");
    EXPECT_EQ(text(waiting(3), 1100ms), "/dev/sdc: attempt 3 of 4, next one in 4 s");
    EXPECT_EQ(text(waiting(3), 9s), "/dev/sdc: attempt 3 of 4, next one in 0 s");
}

TEST(ProgressText, NoAttemptFollowsTheFourth)
{
    EXPECT_EQ(text(waiting(4), 1s), "/dev/sdc: attempt 4 of 4, pause of 4 s");
    EXPECT_EQ(text({0, 1, Activity{"/dev/sdc", 5, "", false, start, start}, waitingPolicy}),
              "/dev/sdc: attempt 4 of 4");
}

TEST(ProgressText, AttemptsAndPauseAreThePolicys)
{
    Progress progress = waiting(1);
    progress.policy = {2, 7s};
    EXPECT_EQ(text(progress), "/dev/sdc: attempt 1 of 2, next one in 7 s");
    progress.longest->attempt = 2;
    EXPECT_EQ(text(progress), "/dev/sdc: attempt 2 of 2, pause of 7 s");
}

TEST(ProgressText, ManyPathsHaveABar)
{
    Progress progress = waiting(1);
    progress.done = 16;
    progress.total = 64;
    EXPECT_EQ(text(progress), "[#####...............] 16 of 64, /dev/sdc: attempt 1 of 4, next "
                              "one in 5 s");
    EXPECT_EQ(text({64, 64, {}, waitingPolicy}), "[####################] 64 of 64");
    EXPECT_EQ(text({0, 64, {}, waitingPolicy}), "[....................] 0 of 64");
}

TEST(ProgressText, PathsThatAreStillReadAreCounted)
{
    EXPECT_EQ(text({7, {}, {}, waitingPolicy}), "7 done");
}

TEST(ProgressText, ANameSteersNoTerminalAndLeavesRoomForTheRest)
{
    Progress progress = waiting(1);
    progress.longest->path = "/dev/sd\x1b[2J\n";
    EXPECT_EQ(text(progress), "/dev/sd\\x1b[2J\\x0a: attempt 1 of 4, next one in 5 s");
    progress.longest->path = std::string(40, 'x');
    EXPECT_EQ(text(progress), std::string(40, 'x') + ": attempt 1 of 4, next one in 5 s");
    progress.longest->path = std::string(41, 'x');
    EXPECT_EQ(text(progress), "..." + std::string(37, 'x') + ": attempt 1 of 4, next one in 5 s");
    progress.longest->path = "/dev/sd" + std::string(65536, 'x') + "y";
    EXPECT_EQ(text(progress), "..." + std::string(36, 'x') + "y: attempt 1 of 4, next one in 5 s");
}

} // namespace
