#ifndef PIDFD_H
#define PIDFD_H

#include <optional>

namespace koze_pdk_4_4::runner {

// What newer kernels do with a descriptor of a process, and the C library has no function for.

/// Sends `signal` to the process group that the process leads or led, whatever its number means by
/// now. False when nobody is left in the group, and before kernel 6.9.
bool signalGroupOf(int pidfd, int signal);

/// Sends `signal` to the process alone.
void signalProcess(int pidfd, int signal);

/// The wait status of an ended process that somebody else has reaped, or is just about to; nothing
/// before kernel 6.15.
std::optional<int> statusOfReaped(int pidfd);

} // namespace koze_pdk_4_4::runner

#endif
