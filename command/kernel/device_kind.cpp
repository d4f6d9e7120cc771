#include "kernel/device_kind.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>

#include "kernel/sysfs_file.h"
#include "text/text.h"

namespace command {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view partitionMark = "part";

/// A kind of devices, and how it is known.
struct KindEntry {
    DeviceKind kind;
    const char* name;            // as users read it
    std::string_view kernelName; // how the driver begins its devices' names, if that tells the kind
    std::string_view uuid;       // how a program marks its maps, if one makes such maps
};

constexpr KindEntry kinds[] = {{DeviceKind::disk, "disk", "sd", ""},
                               {DeviceKind::partition, "partition", "", ""},
                               {DeviceKind::multipath, "multipath", "", "mpath-"},
                               {DeviceKind::multipathPartition, "multipath-partition", "", ""},
                               {DeviceKind::crypt, "crypt", "", "CRYPT-"},
                               {DeviceKind::lvm, "lvm", "", "LVM-"},
                               {DeviceKind::raid, "raid", "md", "DMRAID-"},
                               {DeviceKind::map, "map", "dm-", ""},
                               {DeviceKind::nvme, "nvme", "nvme", ""},
                               {DeviceKind::nvmePath, "nvme-path", "", ""},
                               {DeviceKind::virtio, "virtio", "vd", ""},
                               {DeviceKind::xen, "xen", "xvd", ""},
                               {DeviceKind::dasd, "dasd", "dasd", ""},
                               {DeviceKind::mmc, "mmc", "mmcblk", ""},
                               {DeviceKind::pmem, "pmem", "pmem", ""},
                               {DeviceKind::nbd, "nbd", "nbd", ""},
                               {DeviceKind::rbd, "rbd", "rbd", ""},
                               {DeviceKind::drbd, "drbd", "drbd", ""},
                               {DeviceKind::bcache, "bcache", "bcache", ""},
                               {DeviceKind::powerPath, "powerpath", "emcpower", ""},
                               {DeviceKind::loop, "loop", "loop", ""},
                               {DeviceKind::ram, "ram", "ram", ""},
                               {DeviceKind::zram, "zram", "zram", ""},
                               {DeviceKind::optical, "optical", "sr", ""},
                               {DeviceKind::floppy, "floppy", "fd", ""},
                               {DeviceKind::other, "other", "", ""}};

/// The kind whose `beginning` the text has; null when there is none.
const KindEntry* kindThatBegins(std::string_view text, std::string_view KindEntry::*beginning)
{
    for (const KindEntry& entry : kinds) {
        if (!(entry.*beginning).empty() && startsWith(text, entry.*beginning))
            return &entry;
    }
    return nullptr;
}

std::optional<unsigned int> smallNumber(std::string_view text)
{
    const std::optional<std::uint64_t> number = decimal(text);
    if (!number || *number > std::numeric_limits<unsigned int>::max())
        return std::nullopt;
    return static_cast<unsigned int>(*number);
}

/// A path of native NVMe multipathing:  "nvme" digit+ "c" digit+ "n" digit+
bool isNvmePath(std::string_view name)
{
    const std::size_t mark = name.find_first_not_of(digits, std::string_view("nvme").size());
    return mark != std::string_view::npos && name[mark] == 'c';
}

/// Takes "part1-" off the beginning, if it is there.
std::optional<unsigned int> takePartition(std::string_view& uuid)
{
    if (!startsWith(uuid, partitionMark))
        return std::nullopt;
    const std::size_t end = uuid.find_first_not_of(digits, partitionMark.size());
    if (end == std::string_view::npos || uuid[end] != '-')
        return std::nullopt;
    const std::optional<unsigned int> number =
        smallNumber(uuid.substr(partitionMark.size(), end - partitionMark.size()));
    if (number)
        uuid.remove_prefix(end + 1);
    return number;
}

} // namespace

/// A kind without an entry would have the name of the last one, "other".
const char* kindName(DeviceKind kind)
{
    const auto* const last = std::prev(std::end(kinds));
    return std::find_if(std::begin(kinds), last,
                        [kind](const KindEntry& entry) { return entry.kind == kind; })
        ->name;
}

std::vector<std::string> kindNames()
{
    std::vector<std::string> all;
    for (const KindEntry& entry : kinds)
        all.emplace_back(entry.name);
    return all;
}

DeviceKind kindOfKernelName(std::string_view name)
{
    const KindEntry* entry = kindThatBegins(name, &KindEntry::kernelName);
    if (entry == nullptr)
        return DeviceKind::other;
    const bool isPath = entry->kind == DeviceKind::nvme && isNvmePath(name);
    return isPath ? DeviceKind::nvmePath : entry->kind;
}

MapUuid parseMapUuid(std::string_view uuid)
{
    MapUuid parsed;
    parsed.partnum = takePartition(uuid);
    if (const KindEntry* entry = kindThatBegins(uuid, &KindEntry::uuid)) {
        parsed.kind = entry->kind;
        parsed.id = uuid.substr(entry->uuid.size());
    }
    if (parsed.partnum)
        parsed.kind =
            parsed.kind == DeviceKind::multipath ? DeviceKind::multipathPartition : DeviceKind::map;
    return parsed;
}

std::optional<unsigned int> partitionNumber(std::string_view disk, std::string_view name)
{
    if (disk.empty() || !startsWith(name, disk))
        return std::nullopt;
    name.remove_prefix(disk.size());
    if (digits.find(disk.back()) != std::string_view::npos) {
        if (name.empty() || name.front() != 'p')
            return std::nullopt;
        name.remove_prefix(1);
    }
    return smallNumber(name);
}

} // namespace command
