// The time stamp of a line.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

using koze_pdk_4_4::CZeTraceFileSink;

namespace {

timespec now{};
std::size_t asked = 0;

} // namespace

extern "C" int clock_gettime(clockid_t clock_id, timespec* tp) noexcept
{
    if (clock_id != CLOCK_REALTIME)
        return static_cast<int>(syscall(SYS_clock_gettime, clock_id, tp));
    ++asked;
    *tp = now;
    return 0;
}

namespace {

constexpr std::time_t january = 1768478400; // 2026-01-15T12:00:00Z
constexpr std::time_t july = 1784116800;    // 2026-07-15T12:00:00Z

void setZone(const char* zone)
{
    setenv("TZ", zone, 1); // NOLINT(concurrency-mt-unsafe): the only thread
    tzset();
}

/// Writes a line at each of the times with the same sink. Returns the time stamps of the lines.
std::vector<std::string> stampsAt(const std::vector<timespec>& times)
{
    const TemporaryFolder folder;
    CZeTraceFileSink sink(6, folder.file("trace.log"));
    asked = 0;
    for (const timespec& time : times) {
        now = time;
        sink.write(2, "line");
    }
    EXPECT_EQ(asked, times.size());
    std::vector<std::string> stamps;
    for (const std::string& line : linesOf(folder.file("trace.log")))
        stamps.push_back(line.substr(0, line.find(' ')));
    return stamps;
}

/// The stamp of a line written at `seconds` and `nanoseconds` in a zone of the host's.
std::string stampAt(const char* zone, std::time_t seconds, long nanoseconds = 0)
{
    setZone(zone);
    return stampsAt({{seconds, nanoseconds}}).front();
}

TEST(TimeStamp, IsLocalTimeWithItsZone)
{
    EXPECT_EQ(stampAt("UTC0", january), "2026-01-15T12:00:00.000+00:00");
    EXPECT_EQ(stampAt("IST-5:30", january), "2026-01-15T17:30:00.000+05:30");
    EXPECT_EQ(stampAt("XXX-13:45", january), "2026-01-16T01:45:00.000+13:45");
    EXPECT_EQ(stampAt("XXX11", january), "2026-01-15T01:00:00.000-11:00");
}

TEST(TimeStamp, AHalfHourWestOfGreenwichKeepsItsSign)
{
    EXPECT_EQ(stampAt("XXX0:30", january), "2026-01-15T11:30:00.000-00:30");
    EXPECT_EQ(stampAt("NST3:30", january), "2026-01-15T08:30:00.000-03:30");
}

TEST(TimeStamp, FollowsDaylightSaving)
{
    constexpr char newfoundland[] = "NST3:30NDT,M3.2.0,M11.1.0";
    EXPECT_EQ(stampAt(newfoundland, january), "2026-01-15T08:30:00.000-03:30");
    EXPECT_EQ(stampAt(newfoundland, july), "2026-07-15T09:30:00.000-02:30");
}

TEST(TimeStamp, HasMillisecondsThatAreCutAndFilledUp)
{
    EXPECT_EQ(stampAt("UTC0", january, 6999999), "2026-01-15T12:00:00.006+00:00");
    EXPECT_EQ(stampAt("UTC0", january, 7000000), "2026-01-15T12:00:00.007+00:00");
    EXPECT_EQ(stampAt("UTC0", january, 7999999), "2026-01-15T12:00:00.007+00:00");
    EXPECT_EQ(stampAt("UTC0", january, 999999999), "2026-01-15T12:00:00.999+00:00");
}

TEST(TimeStamp, FillsUpWhatHasOneDigit)
{
    EXPECT_EQ(stampAt("UTC0", 1775178309), "2026-04-03T01:05:09.000+00:00");
}

TEST(TimeStamp, FollowsAClockThatIsSetBack)
{
    setZone("UTC0");
    EXPECT_THAT(
        stampsAt({{january, 1000000},
                  {january, 999000000},
                  {january + 1, 0},
                  {january + 86400, 0},
                  {january, 5000000},
                  {-1, 0},
                  {0, 0}}),
        testing::ElementsAre("2026-01-15T12:00:00.001+00:00", "2026-01-15T12:00:00.999+00:00",
                             "2026-01-15T12:00:01.000+00:00", "2026-01-16T12:00:00.000+00:00",
                             "2026-01-15T12:00:00.005+00:00", "1969-12-31T23:59:59.000+00:00",
                             "1970-01-01T00:00:00.000+00:00"));
}

TEST(TimeStamp, ChangesItsZoneWithTheSecondInWhichTheClocksChange)
{
    setZone("CET-1CEST,M3.5.0,M10.5.0/3");
    constexpr std::time_t lastOfWinter = 1774745999; // 2026-03-29T00:59:59Z
    EXPECT_THAT(
        stampsAt({{lastOfWinter, 0}, {lastOfWinter + 1, 0}}),
        testing::ElementsAre("2026-03-29T01:59:59.000+01:00", "2026-03-29T03:00:00.000+02:00"));
}

} // namespace
