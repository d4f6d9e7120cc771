#include "doctor/map_difference.h"

namespace command {

namespace {

using State = Finding::State;

/// What the kernel, or the library, takes a map for.
enum Kind { disk, partition, other };

Kind kindOf(const KernelMap& map)
{
    if (map.isMultipathDisk())
        return disk;
    return map.isMultipathPartition() ? partition : other;
}

Kind kindOf(const DeviceReading& reading)
{
    if (reading.owner == nullptr)
        return other;
    return reading.isPartition ? partition : disk;
}

struct Difference {
    State state = State::ok;
    const char* text = nullptr; // null when kernel and library agree
    const char* remedy = nullptr;
};

constexpr Difference falseClaim{
    State::note, "the library takes it for a multipath device, which it is not to the kernel",
    "Do not hand it to hosts that expect disks. A name with a '-' would be left unclaimed."};

// The first index is what the kernel takes the map for, the second what the library does.
constexpr Difference differences[3][3] = {
    {{},
     {State::warning, "a multipath disk, but the library takes it for a partition",
      "Give it an alias that does not end in 'p' and a digit."},
     {State::warning, "a multipath disk, but no driver claims its name",
      "Give it an alias without '-' in multipath.conf."}},
    {{State::warning, "a partition of a multipath disk, but the library takes it for a disk",
      "Ask about the disk. Partitions are known by a 'p' and one digit: kpartx -a -p p"},
     {},
     {State::note, "a partition of a multipath disk, but no driver claims its name",
      "Ask about the disk. Partitions are known by a 'p' and one digit: kpartx -a -p p"}},
    {falseClaim, falseClaim, {}}};

} // namespace

std::optional<Finding> mapDifference(const KernelMap& map, const DeviceReading& reading)
{
    const Difference& difference = differences[kindOf(map)][kindOf(reading)];
    if (difference.text == nullptr)
        return std::nullopt;
    return Finding{difference.state, reading.path, difference.text, difference.remedy};
}

} // namespace command
