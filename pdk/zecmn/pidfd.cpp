#include "pidfd.h"

#include <cerrno>
#include <chrono>
#include <cstdint>

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "deadline.h"

namespace koze_pdk_4_4::runner {

namespace {

// Copied from <linux/pidfd.h>, because the headers of older kernels lack these.
constexpr unsigned int signalProcessGroup = 1U << 2;

struct PidfdInfo {
    std::uint64_t mask;
    std::uint64_t cgroup;
    std::uint32_t ids[11];
    std::int32_t exitCode;
};
static_assert(sizeof(PidfdInfo) == 64, "the first published size");

constexpr std::uint64_t exitInformation = 1U << 3;
constexpr unsigned long getInfo = _IOWR(0xff, 11, PidfdInfo);

bool askForExit(int pidfd, PidfdInfo& info)
{
    info = {};
    info.mask = exitInformation;
    return ioctl(pidfd, getInfo, &info) == 0;
}

} // namespace

bool signalGroupOf(int pidfd, int signal)
{
    return syscall(SYS_pidfd_send_signal, pidfd, signal, nullptr, signalProcessGroup) == 0;
}

void signalProcess(int pidfd, int signal)
{
    syscall(SYS_pidfd_send_signal, pidfd, signal, nullptr, 0);
}

std::optional<int> statusOfReaped(int pidfd)
{
    // The kernel publishes the status a moment after waitid has stopped finding the process.
    const Deadline deadline(std::chrono::seconds(1));
    do {
        PidfdInfo info;
        // While the process is being reaped, the kernel may answer ESRCH. The second call succeeds
        // then, because the status has been published.
        if (!askForExit(pidfd, info) && (errno != ESRCH || !askForExit(pidfd, info)))
            return std::nullopt;
        if ((info.mask & exitInformation) != 0)
            return info.exitCode;
        poll(nullptr, 0, 1);
    } while (!deadline.passed());
    return std::nullopt;
}

} // namespace koze_pdk_4_4::runner
