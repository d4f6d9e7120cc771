#include "multipath/map_paths.h"

#include <algorithm>

#include "kernel/multipath_status.h"
#include "multipath/path_through.h"

namespace command {

namespace {

using Status = MultipathStatus;
using GroupState = Status::GroupState;

/// The paths of a group of the map.
struct Group {
    GroupState state;
    std::vector<DiskPath> paths;

    bool hasWorkingPath() const
    {
        return std::any_of(paths.begin(), paths.end(),
                           [](const DiskPath& path) { return path.state == PathState::standby; });
    }
};

DiskPath memberPath(const Inventory& inventory, const BlockDevice& member)
{
    DiskPath path = pathThrough(member);
    if (member.kind() == DeviceKind::nvme) {
        for (NvmePath& own : nvmePaths(inventory, member))
            path.controller = std::move(own.controller);
    }
    return path;
}

/// A device that has just vanished is known by its number only.
DiskPath pathOf(const Inventory& inventory, const Status::Path& status)
{
    const BlockDevice* device = inventory.numbered(status.number);
    DiskPath path;
    if (device == nullptr)
        path.name = status.number.text();
    else
        path = memberPath(inventory, *device);
    if (path.state != PathState::offline)
        path.state = status.isActive ? PathState::standby : PathState::failed;
    path.isUsed = false;
    path.failures = status.failures;
    return path;
}

std::vector<Group> groupsOf(const Inventory& inventory, const Status& status)
{
    std::vector<Group> groups;
    for (const Status::Group& group : status.groups) {
        Group made{group.state, {}};
        for (const Status::Path& path : group.paths) {
            made.paths.push_back(pathOf(inventory, path));
            made.paths.back().group = std::to_string(groups.size() + 1);
        }
        groups.push_back(std::move(made));
    }
    return groups;
}

/// How early the kernel tries a group: the next one, then the active one, then the enabled ones in
/// order, last the disabled ones. It also calls a disabled group next when it has not chosen one.
int rankOf(const Group& group, bool isNext)
{
    switch (group.state) {
    case GroupState::active:
        return isNext ? 0 : 1;
    case GroupState::enabled:
        return isNext ? 0 : 2;
    default:
        return 3;
    }
}

/// The group whose paths the kernel's next request goes through; null when no path works.
Group* usedGroup(std::vector<Group>& groups, std::size_t next)
{
    Group* used = nullptr;
    int usedRank = 0;
    for (std::size_t number = 1; number <= groups.size(); ++number) {
        Group& group = groups[number - 1];
        const int rank = rankOf(group, number == next);
        if (group.hasWorkingPath() && (used == nullptr || rank < usedRank)) {
            used = &group;
            usedRank = rank;
        }
    }
    return used;
}

void markUsed(Group& group)
{
    for (DiskPath& path : group.paths) {
        path.isUsed = path.state == PathState::standby;
        if (*path.isUsed)
            path.state = PathState::active;
    }
}

std::vector<DiskPath> pathsOf(const Inventory& inventory, const Status& status)
{
    std::vector<Group> groups = groupsOf(inventory, status);
    if (Group* used = usedGroup(groups, status.nextGroup))
        markUsed(*used);
    std::vector<DiskPath> paths;
    for (Group& group : groups)
        std::move(group.paths.begin(), group.paths.end(), std::back_inserter(paths));
    return paths;
}

} // namespace

DiskPaths mapPaths(const Inventory& inventory, const BlockDevice& map,
                   const ReadMapStatus& readMapStatus)
{
    DiskPaths disk{PathDriver::deviceMapper, map.path(), &map, {}, {}};
    const MapStatus answer = readMapStatus(map);
    const std::optional<Status> status =
        answer.target == "multipath" ? parseMultipathStatus(answer.parameters) : std::nullopt;
    if (status) {
        disk.paths = pathsOf(inventory, *status);
        return disk;
    }
    disk.error = answer.error ? answer.error : std::make_error_code(std::errc::bad_message);
    for (const BlockDevice* member : inventory.membersOf(map))
        disk.paths.push_back(memberPath(inventory, *member));
    return disk;
}

} // namespace command
