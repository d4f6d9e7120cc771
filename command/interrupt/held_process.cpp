#include "interrupt/held_process.h"

#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace command {

namespace {

/// Signal 0 only checks that the process, or the process group, exists. EPERM: it exists, and runs
/// as another user.
bool canReach(int descriptor, unsigned int flags)
{
    return syscall(SYS_pidfd_send_signal, descriptor, 0, nullptr, flags) == 0 || errno == EPERM;
}

} // namespace

HeldProcess::HeldProcess(pid_t id)
    : m_id(id), m_descriptor(static_cast<int>(syscall(SYS_pidfd_open, id, 0)))
{}

HeldProcess::HeldProcess(HeldProcess&& other) noexcept
    : m_id(other.m_id), m_descriptor(std::exchange(other.m_descriptor, -1))
{}

HeldProcess::~HeldProcess()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

bool HeldProcess::hasNumber() const
{
    return canReach(m_descriptor, 0);
}

bool HeldProcess::isAlive() const
{
    pollfd end{m_descriptor, POLLIN, 0};
    return poll(&end, 1, 0) != 1;
}

bool HeldProcess::groupHasMembers() const
{
    constexpr unsigned int processGroup = 1U << 2; // PIDFD_SIGNAL_PROCESS_GROUP of newer headers
    return canReach(m_descriptor, processGroup);
}

void HeldProcess::send(int signal) const
{
    syscall(SYS_pidfd_send_signal, m_descriptor, signal, nullptr, 0);
}

} // namespace command
