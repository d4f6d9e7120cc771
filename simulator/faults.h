#ifndef SIMULATOR_FAULTS_H
#define SIMULATOR_FAULTS_H

#include <string>
#include <vector>

#include "endings.h"
#include "fields.h"
#include "shaping.h"

namespace simulator {

/// What goes wrong in some calls of one subcommand, selected by their number.
struct Fault {
    std::string subcommand;
    unsigned from = 1;
    unsigned to = 0;
    unsigned every = 1;
    unsigned delayMilliseconds = 0;
    std::string standardError; ///< a line of noise; empty for none
    std::vector<Spoiler> spoilers;
    Ending ending;
    bool late = false; ///< ends after the work and the output, not before

    bool matches(const std::string& called, unsigned number) const;
};

/// Reads one element of "faults"; see README.md for the fields. Throws an Error.
Fault readFault(Fields fields);

/// The first fault that matches the call; without a match a fault that changes nothing.
Fault findFault(const std::vector<Fault>& faults, const std::string& subcommand, unsigned number);

} // namespace simulator

#endif
