#include "doctor/map_difference.h"

#include <string>

#include "text/shell_word.h"

namespace command {

namespace {

/// What the kernel, or the library, takes a map for.
enum Kind { disk, partition, other };

Kind kindOf(const BlockDevice& map)
{
    if (map.kind() == DeviceKind::multipath)
        return disk;
    return map.kind() == DeviceKind::multipathPartition ? partition : other;
}

Kind kindOf(const DeviceReading& reading)
{
    if (reading.owner == nullptr)
        return other;
    return reading.isPartition ? partition : disk;
}

struct Difference {
    Code code = Code::falseClaim;
    const char* text = nullptr; // null when kernel and library agree
    const char* advice = nullptr;
};

constexpr char askAboutDisk[] = "Ask about the disk. Partitions are known by a 'p' and one digit.";

constexpr Difference falseClaim{
    Code::falseClaim, "the library takes it for a multipath device, which it is not to the kernel",
    "Do not hand it to hosts that expect disks. A name with a '-' would be left unclaimed."};

// The first index is what the kernel takes the map for, the second what the library does.
constexpr Difference differences[3][3] = {
    {{},
     {Code::diskAsPartition, "a multipath disk, but the library takes it for a partition",
      "Give it an alias in multipath.conf that does not end in 'p' and a digit."},
     {Code::diskUnclaimed, "a multipath disk, but no driver claims its name",
      "Give it an alias without '-' in multipath.conf."}},
    {{Code::partitionAsDisk, "a partition of a multipath disk, but the library takes it for a disk",
      askAboutDisk},
     {},
     {Code::partitionUnclaimed, "a partition of a multipath disk, but no driver claims its name",
      askAboutDisk}},
    {falseClaim, falseClaim, {}}};

/// The command that names the disk's partitions as the library knows them. Empty for partition 10
/// and above, whose names the library does not know in any form.
std::string renameCommand(const BlockDevice& map, const BlockDevice* disk)
{
    if (kindOf(map) != partition || map.partnum().value_or(0) > 9 || disk == nullptr)
        return {};
    return "kpartx -a -p p " + shellWord(disk->path());
}

} // namespace

std::optional<Finding> mapDifference(const BlockDevice& map, const DeviceReading& reading,
                                     const BlockDevice* disk)
{
    const Difference& difference = differences[kindOf(map)][kindOf(reading)];
    if (difference.text == nullptr)
        return std::nullopt;
    return Finding{difference.code, reading.path, difference.text, difference.advice,
                   renameCommand(map, disk)};
}

} // namespace command
