#include "kernel/device_kind.h"

#include <cstdint>
#include <limits>

#include "kernel/sysfs_file.h"
#include "text/text.h"

namespace command {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view partitionMark = "part";

struct KindName {
    DeviceKind kind;
    const char* name;
};

constexpr KindName names[] = {
    {DeviceKind::disk, "disk"},           {DeviceKind::partition, "partition"},
    {DeviceKind::multipath, "multipath"}, {DeviceKind::multipathPartition, "multipath-partition"},
    {DeviceKind::crypt, "crypt"},         {DeviceKind::lvm, "lvm"},
    {DeviceKind::raid, "raid"},           {DeviceKind::map, "map"},
    {DeviceKind::nvme, "nvme"},           {DeviceKind::nvmePath, "nvme-path"},
    {DeviceKind::virtio, "virtio"},       {DeviceKind::powerPath, "powerpath"},
    {DeviceKind::loop, "loop"},           {DeviceKind::ram, "ram"},
    {DeviceKind::zram, "zram"},           {DeviceKind::optical, "optical"},
    {DeviceKind::other, "other"}};

struct Beginning {
    std::string_view text;
    DeviceKind kind;
};

/// The kernel's drivers and the beginnings of the names that they give.
constexpr Beginning kernelNames[] = {
    {"dm-", DeviceKind::map},    {"sd", DeviceKind::disk}, {"vd", DeviceKind::virtio},
    {"nvme", DeviceKind::nvme},  {"md", DeviceKind::raid}, {"emcpower", DeviceKind::powerPath},
    {"loop", DeviceKind::loop},  {"ram", DeviceKind::ram}, {"zram", DeviceKind::zram},
    {"sr", DeviceKind::optical},
};

/// The programs that make maps, as they mark them.
constexpr Beginning uuids[] = {{"mpath-", DeviceKind::multipath},
                               {"CRYPT-", DeviceKind::crypt},
                               {"LVM-", DeviceKind::lvm},
                               {"DMRAID-", DeviceKind::raid}};

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

const char* kindName(DeviceKind kind)
{
    for (const KindName& entry : names) {
        if (entry.kind == kind)
            return entry.name;
    }
    return "other";
}

std::vector<std::string> kindNames()
{
    std::vector<std::string> all;
    for (const KindName& entry : names)
        all.emplace_back(entry.name);
    return all;
}

DeviceKind kindOfKernelName(std::string_view name)
{
    for (const Beginning& driver : kernelNames) {
        if (startsWith(name, driver.text))
            return driver.kind == DeviceKind::nvme && isNvmePath(name) ? DeviceKind::nvmePath
                                                                       : driver.kind;
    }
    return DeviceKind::other;
}

MapUuid parseMapUuid(std::string_view uuid)
{
    MapUuid parsed;
    parsed.partnum = takePartition(uuid);
    for (const Beginning& program : uuids) {
        if (startsWith(uuid, program.text)) {
            parsed.kind = program.kind;
            parsed.id = uuid.substr(program.text.size());
        }
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
