#ifndef KERNEL_DEVICE_KIND_H
#define KERNEL_DEVICE_KIND_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace command {

/// What a block device is to the kernel.
enum class DeviceKind {
    disk, // of the SCSI disk driver
    partition,
    multipath,
    multipathPartition,
    crypt,
    lvm,
    raid,
    map, // of the device-mapper, and none of the above
    nvme,
    nvmePath, // one path of native NVMe multipathing, which has no node
    virtio,
    xen,
    dasd,
    mmc,
    pmem,
    nbd,
    rbd,
    drbd,
    bcache,
    powerPath,
    loop,
    ram,
    zram,
    optical,
    floppy,
    other
};

/// The kind as users read it, such as "multipath-partition".
const char* kindName(DeviceKind kind);

/// The names of all kinds.
std::vector<std::string> kindNames();

/// The kind of a whole device by its kernel name, whose beginning is its driver's. A map of the
/// device-mapper is DeviceKind::map.
DeviceKind kindOfKernelName(std::string_view name);

/// What the uuid of a map tells, which the program that made the map has set.
///
///     uuid = [ "part" digit+ "-" ] program "-" id     part1-mpath-360014050
struct MapUuid {
    DeviceKind kind = DeviceKind::map;
    std::optional<unsigned int> partnum; // of a partition's map
    std::string id;                      // of a multipath map: the WWID
};

MapUuid parseMapUuid(std::string_view uuid);

/// The number of a partition by its kernel name; nothing when `name` is no partition of `disk`.
///
///     name = disk [ "p" ] digit+                  with the 'p' behind a disk that ends in a digit
std::optional<unsigned int> partitionNumber(std::string_view disk, std::string_view name);

} // namespace command

#endif
