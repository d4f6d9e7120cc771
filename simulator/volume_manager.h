#ifndef SIMULATOR_VOLUME_MANAGER_H
#define SIMULATOR_VOLUME_MANAGER_H

#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "state.h"

namespace simulator {

/// The table with the node that holds the disk.
Answer nodeOfDisk(const State& state, const std::string& disk);

/// The table with the paths of the node.
Answer pathsOfNode(const State& state, const std::string& name);

/// Forgets the node until its disks are scanned again.
Answer removeNode(State& state, const std::string& name);

/// Counts one rescan for the stale nodes of the disks, or of every disk. Ignores names that no path
/// has.
Answer rescan(State& state, const std::optional<std::vector<std::string>>& disks);

} // namespace simulator

#endif
