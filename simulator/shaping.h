#ifndef SIMULATOR_SHAPING_H
#define SIMULATOR_SHAPING_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fields.h"

namespace simulator {

/// What a tool is about to print.
struct Print {
    std::vector<std::string> lines;
    std::string lineEnd = "\n";
    std::optional<std::size_t> cut; ///< so many bytes are printed at most
    unsigned floodMib = 0;          ///< so much of the last line again

    /// The text without its flood.
    std::string text() const;
};

/// Spoils what is printed.
using Spoiler = std::function<void(Print&)>;

/// The spoilers of a fault, in the order in which they work. Takes their fields; throws an Error.
std::vector<Spoiler> readSpoilers(Fields& fields);

} // namespace simulator

#endif
