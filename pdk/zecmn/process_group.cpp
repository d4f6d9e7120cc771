#include "process_group.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "descriptor.h"

namespace koze_pdk_4_4::runner {

namespace {

/// Whether the process of an entry of /proc runs in `group`. Its state is a line of the form
///
///     pid (name) state parent group ...        812 (kodisk) S 1 812 ...
///
/// where the name may hold any character, ")" and newlines included.
bool runsIn(int proc, const char* entry, pid_t group)
{
    char path[NAME_MAX + 6];
    // NOLINTNEXTLINE(cert-err33-c): the path fits
    std::snprintf(path, sizeof path, "%s/stat", entry);
    const Descriptor file(openat(proc, path, O_RDONLY | O_CLOEXEC));
    char line[512] = "";
    if (!file.isOpen() || read(file.number(), line, sizeof line - 1) <= 0)
        return false;
    const char* behindName = std::strrchr(line, ')');
    char state = 0;
    pid_t found = 0;
    return behindName != nullptr && std::sscanf(behindName, ") %c %*d %d", &state, &found) == 2 &&
           found == group && state != 'Z' && state != 'X';
}

/// The next entry. Null at the end, where errno tells an error from the last entry.
const dirent* nextEntry(DIR* folder)
{
    errno = 0;
    return readdir(folder); // NOLINT(concurrency-mt-unsafe): the folder is open here only
}

} // namespace

bool groupRuns(pid_t group)
{
    // Signal 0 sends nothing; the call fails when the group is empty.
    if (kill(-group, 0) != 0)
        return false;
    const std::unique_ptr<DIR, int (*)(DIR*)> proc(opendir("/proc"), closedir);
    if (proc == nullptr)
        return true;
    while (const dirent* entry = nextEntry(proc.get())) {
        if (entry->d_name[0] >= '1' && entry->d_name[0] <= '9' &&
            runsIn(dirfd(proc.get()), entry->d_name, group))
            return true;
    }
    return errno != 0;
}

} // namespace koze_pdk_4_4::runner
