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
    Severity severity;
    const char* name;
    const char* meaning;
};

/// One row for each code, in the order of the enumeration.
inline constexpr CodeFacts codeTable[] = {
    {Code::noPath, Severity::error, "no-path", "a multipathed disk has no path left"},
    {Code::onePathLeft, Severity::warning, "one-path-left",
     "a disk of several paths has one left that can be used"},
    {Code::pathLost, Severity::warning, "path-lost", "a disk has lost paths, and has several left"},
    {Code::fewerPaths, Severity::warning, "fewer-paths",
     "a disk has fewer paths than --expect-paths says"},
    {Code::pathFailed, Severity::warning, "path-failed",
     "a PATH, one of several to its disk, cannot be used"},
    {Code::statesUnknown, Severity::note, "states-unknown",
     "only root may ask for the states of paths"},
    {Code::pathsUsable, Severity::ok, "paths-usable", "every path of a disk can be used"},
    {Code::activePath, Severity::ok, "active-path", "the path that the volume manager uses"},
    {Code::activePathMissing, Severity::warning, "active-path-missing",
     "the volume manager uses a path that does not exist here"},
    {Code::activePathNoDevice, Severity::error, "active-path-no-device",
     "a file is in place of the path that the volume manager uses"},
    {Code::activePathRefused, Severity::error, "active-path-refused",
     "the volume manager names a path that is not to be used"},
    {Code::diskNotHeld, Severity::note, "disk-not-held",
     "the volume manager does not hold a disk, but holds others"},
    {Code::noDiskHeld, Severity::warning, "no-disk-held",
     "the volume manager holds none of the disks"},
    {Code::nameNotAsked, Severity::error, "name-not-asked",
     "the volume manager's tools would misread a name"},
    {Code::notAsked, Severity::note, "not-asked", "a PATH of another driver than the native one"},
    {Code::noVolumeManager, Severity::note, "no-volume-manager",
     "the volume manager's tools are not installed"},
    {Code::toolReady, Severity::ok, "tool-ready", "a tool of the volume manager can be run"},
    {Code::lookupToolUnusable, Severity::error, "lookup-tool-unusable",
     "the tool that looks disks up cannot be run"},
    {Code::scanToolUnusable, Severity::warning, "scan-tool-unusable",
     "the tool that scans disks cannot be run"},
    {Code::toolFailed, Severity::error, "tool-failed",
     "a tool failed, and kept disks from being examined"},
    {Code::toolUnreadable, Severity::error, "tool-unreadable",
     "a tool's answer is no table, and kept disks from being examined"},
    {Code::toolHangs, Severity::error, "tool-hangs",
     "a tool did not answer, and kept disks from being examined"},
    {Code::toolFloods, Severity::error, "tool-floods",
     "a tool printed too much, and kept disks from being examined"},
    {Code::toolNotRun, Severity::error, "tool-not-run",
     "a tool could not be started, and kept disks from being examined"},
    {Code::timeLimit, Severity::error, "time-limit",
     "the time of --timeout passed before all disks were examined"},
    {Code::interrupted, Severity::error, "interrupted", "a signal came before all was examined"},
    {Code::sysfsUnreadable, Severity::error, "sysfs-unreadable",
     "the kernel's devices cannot be read"},
    {Code::driverDevices, Severity::ok, "driver-devices", "how many devices a driver owns"},
    {Code::nodeMissing, Severity::error, "node-missing", "a device has no node in /dev"},
    {Code::nodeReplaced, Severity::error, "node-replaced", "a file is in place of a device's node"},
    {Code::nodeLeftOver, Severity::warning, "node-left-over", "a node has no device"},
    {Code::deviceMissing, Severity::warning, "device-missing", "a PATH does not exist"},
    {Code::noBlockDevice, Severity::error, "no-block-device",
     "a name of a disk, or a PATH, is no block device"},
    {Code::twoClaims, Severity::warning, "two-claims", "two drivers claim a name"},
    {Code::diskAsPartition, Severity::warning, "disk-as-partition",
     "the library takes a multipath disk for a partition"},
    {Code::diskUnclaimed, Severity::warning, "disk-unclaimed",
     "no driver claims a multipath disk's name"},
    {Code::partitionAsDisk, Severity::warning, "partition-as-disk",
     "the library takes a partition of a multipath disk for a disk"},
    {Code::partitionUnclaimed, Severity::note, "partition-unclaimed",
     "no driver claims the name of a multipath disk's partition"},
    {Code::falseClaim, Severity::note, "false-claim",
     "the library takes another map for a multipath device"},
    {Code::ambiguousNames, Severity::note, "ambiguous-names",
     "other tools may read names differently"}};

inline constexpr std::size_t codeCount = sizeof codeTable / sizeof codeTable[0];

// not covered: evaluated by the compiler
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
