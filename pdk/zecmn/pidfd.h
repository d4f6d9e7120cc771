#ifndef ZECMN_PIDFD_H
#define ZECMN_PIDFD_H

#include <optional>

namespace koze_pdk_4_4::runner {

// System calls on pidfds for which the C library has no function.

/// Sends `signal` to the process group that the process leads or led, even if the kernel has reused
/// the process id. Returns false when the group is empty, and before kernel 6.9.
bool signalGroupOf(int pidfd, int signal);

/// Sends `signal` to the process alone.
void signalProcess(int pidfd, int signal);

/// The wait status of an ended process that the host has reaped or is reaping; nothing before
/// kernel 6.15.
std::optional<int> statusOfReaped(int pidfd);

} // namespace koze_pdk_4_4::runner

#endif
