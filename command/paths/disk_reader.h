#ifndef PATHS_DISK_READER_H
#define PATHS_DISK_READER_H

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "kernel/machine.h"
#include "multipath/disk_paths.h"
#include "multipath/disk_question.h"

namespace command {

/// Questions to the volume manager's tools. Empty functions where they are not installed.
struct VolumeManager {
    std::function<DiskAnswer(const std::string& path)> askAboutDisk;
    std::function<DiskAnswer(const std::string& node)> askAboutNode;
};

/// Where paths are read from.
struct PathSources {
    KernelRoots roots;
    ReadMapStatus readMapStatus;
    VolumeManager volumeManager;
};

/// Which disks are wanted.
struct WantedDisks {
    std::vector<std::string> given; // none: all
    bool withSinglePaths = false;   // of all: also disks of one path
};

/// Disks and their paths at one moment, and what users should know about them.
struct DiskList {
    std::unique_ptr<Machine> machine; // has the devices
    std::vector<DiskPaths> disks;
    std::vector<std::string> notes; // sentences without a full stop
    bool hasUnknown = false;        // a given PATH is no disk

    /// 32: a disk has no used path, or a given PATH is no disk; else 64: a disk has lost a path;
    /// else 1: of some disk it is not known whether a path is used; else 0.
    int exitStatus() const;
};

/// Reads the disks of the machine, each once. Throws std::system_error when the machine's devices
/// cannot be read, and Interrupted as the volume manager's functions do.
DiskList readDisks(const PathSources& sources, const WantedDisks& wanted);

} // namespace command

#endif
