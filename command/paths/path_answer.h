#ifndef PATHS_PATH_ANSWER_H
#define PATHS_PATH_ANSWER_H

#include <chrono>
#include <optional>
#include <string>

#include "multipath/disk_paths.h"
#include "output/columns.h"

namespace command {

/// What a path does in a second.
struct IoRates {
    std::int64_t reads = 0;
    std::int64_t readBytes = 0;
    std::int64_t writes = 0;
    std::int64_t writtenBytes = 0;
};

/// How a path last changed while it was watched.
struct PathChange {
    enum class Kind { added, removed, changed };

    Kind kind = Kind::changed;
    std::chrono::system_clock::time_point time;
    std::string was; // group, state and use before:  "1 active used"
};

/// Facts of a disk that all its rows show.
struct DiskFacts {
    std::optional<std::uint64_t> size;
    std::optional<std::string> wwid;
};

DiskFacts factsOf(const DiskPaths& disk);

/// A path of a disk, in a row.
struct PathAnswer {
    const DiskPaths& disk;
    const DiskFacts& facts;
    const DiskPath& path;
    std::optional<IoCounters> io = {};
    std::optional<IoRates> rates = {};  // of a watched path
    const PathChange* change = nullptr; // of a watched path
};

/// A path as it is now.
PathAnswer pathAnswer(const DiskPaths& disk, const DiskFacts& facts, const DiskPath& path);

/// `isWatched` adds the columns that only watched paths have.
const Columns<PathAnswer>& pathColumns(bool isWatched);

} // namespace command

#endif
