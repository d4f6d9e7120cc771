// No question changes the state of the host's process.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <clocale>
#include <filesystem>

#include <unistd.h>

#include "tests/support/operations.h"
#include "tests/support/recording_log.h"

namespace {

/// The state of the host's process that must not change.
struct Surroundings {
    std::string locale = std::setlocale(LC_ALL, nullptr); // NOLINT(concurrency-mt-unsafe)
    std::vector<std::string> environment;
    std::string directory = std::filesystem::current_path();
    std::vector<std::string> descriptors;

    Surroundings()
    {
        for (char** variable = environ; *variable != nullptr; ++variable)
            environment.emplace_back(*variable);
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
            descriptors.push_back(entry.path());
    }

    bool operator==(const Surroundings& other) const
    {
        return locale == other.locale && environment == other.environment &&
               directory == other.directory && descriptors == other.descriptors;
    }
};

TEST(ClaimManagerInAHost, LeavesItsSurroundingsAlone)
{
    const Surroundings before;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        RecordingLog log;
        CDmpClaimManager manager;
        manager.registerTraceLog(log.handle());
        for (const char* device : {"", "/dev/sda9999999999999999999", "/dev/mapper/mpathap1"}) {
            for (const Operation& operation : operationsOf(manager, device))
                operation.call();
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(before == Surroundings());
}

TEST(ClaimManagerInAHost, LeavesErrnoAlone)
{
    CDmpClaimManager manager;
    for (const char* device : {"/dev/sda9999999999999999999", "/dev/emcpowera9999999999999999999",
                               "/dev/mapper/mpathap1", "/dev/vda"}) {
        for (const Operation& operation : operationsOf(manager, device)) {
            errno = EXDEV;
            operation.call();
            EXPECT_EQ(errno, EXDEV) << operation.name << ' ' << device;
        }
    }
}

} // namespace
