#ifndef SIMULATOR_STATE_H
#define SIMULATOR_STATE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "faults.h"
#include "replay.h"

namespace simulator {

/// One of the operating system's paths to a disk.
struct Path {
    std::string name;
    std::string state;
    std::string type;
    std::string controller;
};

/// What is wrong with a node's mapping, and until when.
struct Stale {
    unsigned rescans = 1;    ///< so many rescans of its disks are missing
    bool removal = false;    ///< rescans count only after a removal
    std::string name;        ///< what the node is called meanwhile; empty when it is not found
    std::vector<Path> paths; ///< what is shown of it under that name; empty when nothing is
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

/// Everything that the volume manager knows. See README.md for the file.
struct State {
    std::vector<Array> arrays;
    bool emptyTableForUnknownDisk = false;
    std::vector<Fault> faults;
    std::optional<std::vector<Record>> replay;
    std::map<std::string, unsigned> calls; ///< made so far, by subcommand
    Replayed replayed;
};

/// Reads a whole state file. A file of records that "replay" names is looked for in `folder`.
/// Throws an Error that names the place when anything is missing, unknown or of another type.
State readState(const Json& document, const std::string& folder);

/// Writes what calls can change back into the document that `state` was read from.
void writeState(const State& state, Json& document);

} // namespace simulator

#endif
