#ifndef KERNEL_MULTIPATH_STATUS_H
#define KERNEL_MULTIPATH_STATUS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "kernel/device_number.h"

namespace command {

/// What the kernel's multipath target says of a map.
struct MultipathStatus {
    struct Path {
        DeviceNumber number;
        bool isActive = false; // else the kernel has failed it
        std::uint64_t failures = 0;
    };

    enum class GroupState { active, enabled, disabled };

    /// Paths that the kernel uses together.
    struct Group {
        GroupState state = GroupState::enabled;
        std::vector<Path> paths;
    };

    std::size_t nextGroup = 0; // the number, from 1, of the group that the kernel tries first
    std::vector<Group> groups;
};

/// Nothing when the text is no status of a multipath target.
///
///     status = list list groups next { group }
///     list   = N { word }                         the features, then the hardware handler
///     group  = ( "A" | "E" | "D" ) list paths words { path }
///     path   = device ( "A" | "F" ) failures { word }
///
/// N and `paths` count what follows them, `words` the words of each path:
///
///     2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 0
std::optional<MultipathStatus> parseMultipathStatus(std::string_view text);

} // namespace command

#endif
