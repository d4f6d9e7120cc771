#ifndef SIMULATOR_FAULTS_H
#define SIMULATOR_FAULTS_H

#include <optional>
#include <string>
#include <vector>

#include "endings.h"
#include "fields.h"

namespace simulator {

/// How the printed lines are spoilt.
struct Shape {
    bool noHeader = false;
    bool noRule = false;
    bool blankLines = false;
    bool crlf = false;
    std::string separator;          ///< between columns; empty keeps the columns aligned
    std::string note;               ///< a line before the first; empty for none
    unsigned floodMib = 0;          ///< so much of the last line again
    std::optional<std::size_t> cut; ///< so many bytes are printed at most
};

/// What goes wrong in the calls of one subcommand whose number is in a range.
struct Fault {
    std::string subcommand;
    unsigned from = 1;
    unsigned to = 0;
    unsigned every = 1;
    unsigned delayMilliseconds = 0;
    std::string standardError; ///< a line of noise; empty for none
    Shape shape;
    Ending ending;
    bool late = false; ///< ends after the work and the output, not before

    bool matches(const std::string& called, unsigned number) const;
};

/// Reads one element of "faults"; see README.md for the fields. Throws an Error.
Fault readFault(Fields fields);

/// The first fault that matches the call, else one in which nothing goes wrong.
Fault findFault(const std::vector<Fault>& faults, const std::string& subcommand, unsigned number);

} // namespace simulator

#endif
