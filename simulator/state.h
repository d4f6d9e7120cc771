#ifndef SIMULATOR_STATE_H
#define SIMULATOR_STATE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "faults.h"
#include "replay.h"

namespace simulator {

/// A path to a disk, as the operating system names it.
struct Path {
    std::string name;
    std::string state;
    std::string type;
    std::string controller;
};

/// How the mapping of a node is out of date, and what repairs it.
struct Stale {
    unsigned rescans = 1;    ///< how many rescans of its disks it still needs
    bool removal = false;    ///< whether rescans count only after a removal
    std::string name;        ///< under which it is found until then; empty when it is not found
    std::vector<Path> paths; ///< shown under that name until then
};

/// One multipathed disk.
struct Node {
    std::string name;
    std::string state;
    std::vector<Path> paths;
    std::optional<Stale> stale;
};

struct Array {
    std::string name;
    std::vector<Node> nodes;
};

/// All data of the volume manager. See README.md for the file.
struct State {
    std::vector<Array> arrays;
    bool emptyTableForUnknownDisk = false;
    std::vector<Fault> faults;
    std::optional<std::vector<Record>> replay;
    std::map<std::string, unsigned> calls; ///< made so far, by subcommand
    Replayed replayed;
};

/// Reads a whole state file. The file that "replay" may name is in `folder`.
/// Throws an Error that names the place when anything is missing, unknown or of another type.
State readState(const Json& document, const std::string& folder);

/// Writes the fields that calls can change into `document`, from which `state` was read.
void writeState(const State& state, Json& document);

} // namespace simulator

#endif
