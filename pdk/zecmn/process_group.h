#ifndef ZECMN_PROCESS_GROUP_H
#define ZECMN_PROCESS_GROUP_H

#include <sys/types.h>

namespace koze_pdk_4_4::runner {

/// Whether a process of `group` still runs. Zombies do not count: only their parents can reap them.
/// Returns true when /proc cannot be read.
bool groupRuns(pid_t group);

} // namespace koze_pdk_4_4::runner

#endif
