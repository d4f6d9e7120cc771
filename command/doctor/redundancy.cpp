#include "doctor/redundancy.h"

#include <algorithm>
#include <string>

#include "kovm/command_lines.h"
#include "text/shell_word.h"
#include "text/word_list.h"

namespace command {

namespace {

bool isLostInNode(const ExaminedPath& path)
{
    return path.isNodes && !path.canBeUsed();
}

/// A command that shows the paths of the disk, as the driver has them that has lost one.
std::string showPaths(const MultipathDisk& disk)
{
    const std::string driver = disk.driver;
    if (driver == "kodmp")
        return shellCommand(kovm::pathQuery(disk.device));
    if (std::any_of(disk.paths.begin(), disk.paths.end(), isLostInNode))
        return shellCommand(kovm::pathQuery(disk.node));
    return (driver == "nvme" ? "nvme list-subsys " : "multipath -ll ") + shellWord(disk.device);
}

constexpr char checkCables[] = "Check the cables, the switches and the array.";

std::string usableCount(const MultipathDisk& disk)
{
    return std::to_string(disk.usablePaths()) + " of " + counted(disk.paths.size(), "path");
}

/// "2 paths, sdb carries the I/O", of a disk that is a node, too "2 paths (node arr0_17), sdb ..."
std::string usableText(const MultipathDisk& disk)
{
    const auto isUsed = [](const ExaminedPath& path) { return path.isUsed; };
    const auto first = std::find_if(disk.paths.begin(), disk.paths.end(), isUsed);
    std::string text = counted(disk.paths.size(), "path");
    if (!disk.node.empty())
        text += " (node " + disk.node + ')';
    if (first == disk.paths.end())
        return text;
    const bool hasOthers = std::any_of(first + 1, disk.paths.end(), isUsed);
    return text + ", " + first->name +
           (hasOthers ? " and others carry the I/O" : " carries the I/O");
}

Finding stateOf(const MultipathDisk& disk)
{
    const std::size_t usable = disk.usablePaths();
    const std::string lost = lostPaths(disk);
    if (usable == disk.paths.size() && usable > 0)
        return {Code::pathsUsable, disk.device, usableText(disk)};
    if (usable == 0)
        return {Code::noPath, disk.device,
                lost.empty() ? "it has no path" : "no path is left: " + lost, checkCables,
                showPaths(disk)};
    if (usable == 1)
        return {Code::onePathLeft, disk.device, lost + "; " + usableCount(disk) + " is left",
                checkCables, showPaths(disk)};
    return {Code::pathLost, disk.device, lost + "; " + usableCount(disk) + " are left", checkCables,
            showPaths(disk)};
}

} // namespace

void checkRedundancy(const MultipathDisk& disk, std::size_t expectedPaths,
                     const FindingReceiver& report)
{
    report(stateOf(disk));
    if (disk.paths.size() < expectedPaths)
        report({Code::fewerPaths, disk.device,
                "has " + counted(disk.paths.size(), "path") + ", but " +
                    std::to_string(expectedPaths) + " are expected: " +
                    (expectedPaths - disk.paths.size() == 1 ? "one is gone" : "some are gone"),
                checkCables, showPaths(disk)});
}

void checkPath(const MultipathDisk& disk, const std::string& path, const FindingReceiver& report)
{
    for (const ExaminedPath& one : disk.paths) {
        if (one.name == path && !one.canBeUsed())
            report({Code::pathFailed, "/dev/" + path,
                    "a path of " + disk.device + ", and " + pathStateName(one.state), checkCables,
                    showPaths(disk)});
    }
}

void checkStates(const std::vector<MultipathDisk>& disks, const FindingReceiver& report)
{
    const auto isUnknown = [](const MultipathDisk& disk) { return bool(disk.error); };
    const auto first = std::find_if(disks.begin(), disks.end(), isUnknown);
    if (first == disks.end())
        return;
    const auto count = std::count_if(first, disks.end(), isUnknown);
    report({Code::statesUnknown, first->device,
            "the states of its paths are not known (" + first->error.message() + "), as of " +
                std::to_string(count) + " of " + std::to_string(disks.size()) +
                " disks: of lost paths only those are found that the kernel took offline",
            "Run this as root."});
}

} // namespace command
