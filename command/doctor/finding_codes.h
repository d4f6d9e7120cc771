#ifndef DOCTOR_FINDING_CODES_H
#define DOCTOR_FINDING_CODES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace command {

/// note: good to know. warning: an answer may be wrong, or a disk has lost redundancy. error: an
/// answer is wrong or missing, or a disk has no path.
enum class Severity { ok, note, warning, error };

/// What a finding says. Monitoring relies on the names: a name never changes its meaning.
enum class Code {
    noPath,
    onePathLeft,
    pathLost,
    fewerPaths,
    pathFailed,
    statesUnknown,
    pathsUsable,
    activePath,
    activePathMissing,
    activePathNoDevice,
    activePathRefused,
    diskNotHeld,
    noDiskHeld,
    nameNotAsked,
    notAsked,
    noVolumeManager,
    toolReady,
    lookupToolUnusable,
    scanToolUnusable,
    toolFailed,
    toolUnreadable,
    toolHangs,
    toolFloods,
    toolNotRun,
    timeLimit,
    interrupted,
    sysfsUnreadable,
    driverDevices,
    nodeMissing,
    nodeReplaced,
    nodeLeftOver,
    deviceMissing,
    noBlockDevice,
    twoClaims,
    diskAsPartition,
    diskUnclaimed,
    partitionAsDisk,
    partitionUnclaimed,
    falseClaim,
    ambiguousNames
};

struct CodeFacts {
    Code code;
    const char* name;
    Severity severity;
    const char* meaning;
};

/// One row for each code, in the order of the enumeration.
inline constexpr CodeFacts codeTable[] = {
    {Code::noPath, "no-path", Severity::error, "a multipathed disk has no path left"},
    {Code::onePathLeft, "one-path-left", Severity::warning,
     "a disk of several paths has one left that can be used"},
    {Code::pathLost, "path-lost", Severity::warning, "a disk has lost paths, and has several left"},
    {Code::fewerPaths, "fewer-paths", Severity::warning,
     "a disk has fewer paths than --expect-paths says"},
    {Code::pathFailed, "path-failed", Severity::warning,
     "a PATH, one of several to its disk, cannot be used"},
    {Code::statesUnknown, "states-unknown", Severity::note,
     "only root may ask for the states of paths"},
    {Code::pathsUsable, "paths-usable", Severity::ok, "every path of a disk can be used"},
    {Code::activePath, "active-path", Severity::ok, "the path that the volume manager uses"},
    {Code::activePathMissing, "active-path-missing", Severity::warning,
     "the volume manager uses a path that does not exist here"},
    {Code::activePathNoDevice, "active-path-no-device", Severity::error,
     "a file is in place of the path that the volume manager uses"},
    {Code::activePathRefused, "active-path-refused", Severity::error,
     "the volume manager names a path that is not to be used"},
    {Code::diskNotHeld, "disk-not-held", Severity::note,
     "the volume manager does not hold a disk, but holds others"},
    {Code::noDiskHeld, "no-disk-held", Severity::warning,
     "the volume manager holds none of the disks"},
    {Code::nameNotAsked, "name-not-asked", Severity::error,
     "the volume manager's tools would misread a name"},
    {Code::notAsked, "not-asked", Severity::note, "a PATH of another driver than the native one"},
    {Code::noVolumeManager, "no-volume-manager", Severity::note,
     "the volume manager's tools are not installed"},
    {Code::toolReady, "tool-ready", Severity::ok, "a tool of the volume manager can be run"},
    {Code::lookupToolUnusable, "lookup-tool-unusable", Severity::error,
     "the tool that looks disks up cannot be run"},
    {Code::scanToolUnusable, "scan-tool-unusable", Severity::warning,
     "the tool that scans disks cannot be run"},
    {Code::toolFailed, "tool-failed", Severity::error,
     "a tool failed, and kept disks from being examined"},
    {Code::toolUnreadable, "tool-unreadable", Severity::error,
     "a tool's answer is no table, and kept disks from being examined"},
    {Code::toolHangs, "tool-hangs", Severity::error,
     "a tool did not answer, and kept disks from being examined"},
    {Code::toolFloods, "tool-floods", Severity::error,
     "a tool printed too much, and kept disks from being examined"},
    {Code::toolNotRun, "tool-not-run", Severity::error,
     "a tool could not be started, and kept disks from being examined"},
    {Code::timeLimit, "time-limit", Severity::error,
     "the time of --timeout passed before all disks were examined"},
    {Code::interrupted, "interrupted", Severity::error, "a signal came before all was examined"},
    {Code::sysfsUnreadable, "sysfs-unreadable", Severity::error,
     "the kernel's devices cannot be read"},
    {Code::driverDevices, "driver-devices", Severity::ok, "how many devices a driver owns"},
    {Code::nodeMissing, "node-missing", Severity::error, "a device has no node in /dev"},
    {Code::nodeReplaced, "node-replaced", Severity::error, "a file is in place of a device's node"},
    {Code::nodeLeftOver, "node-left-over", Severity::warning, "a node has no device"},
    {Code::deviceMissing, "device-missing", Severity::warning, "a PATH does not exist"},
    {Code::noBlockDevice, "no-block-device", Severity::error,
     "a name of a disk, or a PATH, is no block device"},
    {Code::twoClaims, "two-claims", Severity::warning, "two drivers claim a name"},
    {Code::diskAsPartition, "disk-as-partition", Severity::warning,
     "the library takes a multipath disk for a partition"},
    {Code::diskUnclaimed, "disk-unclaimed", Severity::warning,
     "no driver claims a multipath disk's name"},
    {Code::partitionAsDisk, "partition-as-disk", Severity::warning,
     "the library takes a partition of a multipath disk for a disk"},
    {Code::partitionUnclaimed, "partition-unclaimed", Severity::note,
     "no driver claims the name of a multipath disk's partition"},
    {Code::falseClaim, "false-claim", Severity::note,
     "the library takes another map for a multipath device"},
    {Code::ambiguousNames, "ambiguous-names", Severity::note,
     "other tools may read names differently"}};

inline constexpr std::size_t codeCount = sizeof codeTable / sizeof codeTable[0];

constexpr bool codesAreInOrder()
{
    for (std::size_t i = 0; i < codeCount; ++i) {
        if (codeTable[i].code != static_cast<Code>(i))
            return false;
    }
    return codeTable[codeCount - 1].code == Code::ambiguousNames;
}
static_assert(codesAreInOrder(), "codeTable has a row for each code, in their order");

constexpr const CodeFacts& factsOf(Code code)
{
    return codeTable[static_cast<std::size_t>(code)];
}

/// The code of that name; nothing when there is none.
std::optional<Code> codeNamed(std::string_view name);

/// "ok", "note", "warning" or "error".
const char* severityName(Severity severity);

/// A line for each code: name, severity, meaning.
std::string codeList();

/// The same for a help text, with lines of at most 79 columns.
std::string codeHelp();

} // namespace command

#endif
