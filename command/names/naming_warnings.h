#ifndef NAMES_NAMING_WARNINGS_H
#define NAMES_NAMING_WARNINGS_H

#include <string>
#include <vector>

namespace command {

/// A path, and the library's answers about it.
struct NamedDevice {
    std::string path;
    std::string prefix; // the owner's; empty, like the rest, when nobody claims the path
    bool isPartition;
    std::string disk;
};

/// What an administrator should know about a name.
struct Warning {
    std::string code; // stays the same when the text is improved
    std::string text; // what it means, and what to do
};

// Warnings for a path that is ambiguous, that the library and other tools read differently, or
// whose partitions they name differently. They never change an answer.

using NameWarner = void (*)(const NamedDevice& device, std::vector<Warning>& warnings);

/// Warns of the device-mapper's names.
void warnOfMapperName(const NamedDevice& device, std::vector<Warning>& warnings);

/// Warns of names in which the number follows the disk's letters:
///
///     name = prefix letters [ digits ]          /dev/sdaa12
void warnOfNumberedName(const NamedDevice& device, std::vector<Warning>& warnings);

/// Warns of a path that a driver claims: of where its prefix stands, of what `warnOfName`, that
/// driver's warner, finds, and of a partition's number.
void warnOfClaimedName(const NamedDevice& device, NameWarner warnOfName,
                       std::vector<Warning>& warnings);

/// Warns of a path that nobody claims.
void warnOfUnclaimedName(const NamedDevice& device, std::vector<Warning>& warnings);

} // namespace command

#endif
