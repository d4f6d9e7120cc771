#ifndef SIMULATOR_SHAPING_H
#define SIMULATOR_SHAPING_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fields.h"

namespace simulator {

/// The output that a tool is about to print.
struct Print {
    std::vector<std::string> lines;
    std::string lineEnd = "\n";
    std::optional<std::size_t> cut; ///< the most bytes that are printed
    unsigned floodMib = 0;          ///< how many MiB of the last line follow

    /// The text without the repeated last line.
    std::string text() const;
};

/// Changes the output as a faulty tool would.
using Spoiler = std::function<void(Print&)>;

/// Reads the fields of a fault that spoil the output. The spoilers are in the order in which they
/// are applied. Throws an Error.
std::vector<Spoiler> readSpoilers(Fields& fields);

} // namespace simulator

#endif
