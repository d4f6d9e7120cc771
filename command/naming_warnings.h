#ifndef NAMING_WARNINGS_H
#define NAMING_WARNINGS_H

#include <string>
#include <vector>

namespace command {

/// A path together with what the library says of it.
struct NamedDevice {
    std::string path;
    std::string owner;  // see driverName; empty when nobody claims the path
    std::string prefix; // that the owner claims
    bool partition;
    std::string disk;
};

/// What an administrator should know about a name.
struct Warning {
    std::string code; // stays the same when the text is improved
    std::string text; // what it means, and what to do
};

/// The warnings for a path that is ambiguous, that the library and other tools read differently,
/// or whose partitions they name differently. They never change an answer.
std::vector<Warning> namingWarnings(const NamedDevice& device);

} // namespace command

#endif
