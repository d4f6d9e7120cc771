#ifndef PATHS_PATH_HISTORY_H
#define PATHS_PATH_HISTORY_H

#include <chrono>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "paths/disk_reader.h"
#include "paths/path_answer.h"

namespace command {

/// When disks were read: the time of day, and a clock that does not jump.
struct Moment {
    std::chrono::system_clock::time_point time = std::chrono::system_clock::now();
    std::chrono::steady_clock::time_point clock = std::chrono::steady_clock::now();
};

/// Watched paths: how each last changed, and what it does in a second.
class PathHistory {
public:
    struct Rows {
        std::vector<PathAnswer> all;     // of the disks in order, then of the paths that are gone
        std::vector<PathAnswer> changed; // those that differ from the last reading
    };

    /// Compares the disks with the last reading; the first one has no changes. The rows are valid
    /// as long as `disks` and until the next call.
    Rows take(const std::vector<DiskPaths>& disks, const Moment& now);

private:
    using Key = std::pair<std::string, std::string>; // the names of disk and path

    /// What was last known of a path. Has no device, which may be gone.
    struct Known {
        DiskPaths disk; // without its paths
        DiskPath path;
        std::optional<IoCounters> io = {};
        std::optional<PathChange> change = {};
        std::size_t reading = 0; // the last one that had the path
    };

    void takePath(PathAnswer answer, const Moment& now, Rows& rows);
    void takeGone(const Moment& now, Rows& rows);
    void compare(Known& known, const DiskPath& path, const Moment& now) const;
    std::optional<IoRates> rates(const Known& known, const PathAnswer& answer,
                                 const Moment& now) const;

    std::map<Key, Known> m_known;
    std::deque<DiskFacts> m_facts; // of the disks in order
    std::size_t m_reading = 0;     // the number of the current one
    std::chrono::steady_clock::time_point m_last;
};

} // namespace command

#endif
