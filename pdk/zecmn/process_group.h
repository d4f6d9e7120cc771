#ifndef PROCESS_GROUP_H
#define PROCESS_GROUP_H

#include <sys/types.h>

namespace koze_pdk_4_4::runner {

/// Whether a process of `group` still runs. One that has ended and that its parent, which is none
/// of ours, has not reaped yet does not. Also true when /proc cannot tell.
bool groupRuns(pid_t group);

} // namespace koze_pdk_4_4::runner

#endif
