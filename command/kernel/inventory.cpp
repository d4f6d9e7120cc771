#include "kernel/inventory.h"

#include <algorithm>
#include <cstring>

#include "files/names_in.h"
#include "kernel/sysfs_file.h"
#include "text/text.h"

namespace command {

namespace {

using Named = std::unordered_map<std::string_view, const BlockDevice*>;
using Related = std::unordered_map<const BlockDevice*, Inventory::Devices>;

const BlockDevice* find(const Named& devices, std::string_view name)
{
    const auto found = devices.find(name);
    return found == devices.end() ? nullptr : found->second;
}

Inventory::Devices find(const Related& related, const BlockDevice& device)
{
    const auto found = related.find(&device);
    return found == related.end() ? Inventory::Devices() : found->second;
}

/// Sorts devices by their paths, each of which is made once.
void sortByPath(std::vector<BlockDevice>& devices)
{
    std::vector<std::pair<std::string, BlockDevice>> keyed;
    keyed.reserve(devices.size());
    for (BlockDevice& device : devices)
        keyed.emplace_back(device.path(), std::move(device));
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        return strverscmp(a.first.c_str(), b.first.c_str()) < 0;
    });
    devices.clear();
    for (auto& [path, device] : keyed)
        devices.push_back(std::move(device));
}

/// Whether the kernel may have built the device out of others, so that its "slaves" are worth
/// reading.
bool mayHaveMembers(const BlockDevice& device)
{
    switch (device.kind()) {
    case DeviceKind::loop:
    case DeviceKind::ram:
    case DeviceKind::zram:
        return false;
    default:
        return device.isVirtual();
    }
}

} // namespace

Inventory::Inventory(KernelRoots roots) : m_roots(std::move(roots))
{
    readDevices();
    for (const BlockDevice& device : m_devices) {
        m_named.emplace(device.kernelName(), &device);
        if (!device.mapName().empty())
            m_mapNamed.emplace(device.mapName(), &device);
    }
}

void Inventory::readDevices()
{
    for (std::string& name : namesIn(m_roots.blockFolder(), m_error))
        m_devices.emplace_back(m_roots, std::move(name));
    sortByPath(m_devices);
}

const BlockDevice* Inventory::named(std::string_view kernelName) const
{
    return find(m_named, kernelName);
}

const BlockDevice* Inventory::mapNamed(std::string_view name) const
{
    return find(m_mapNamed, name);
}

const BlockDevice* Inventory::numbered(const DeviceNumber& number) const
{
    const std::string link = m_roots.sysfs + "/dev/block/" + number.text();
    const std::optional<std::string> target = linkTarget(link);
    return target ? named(target->substr(target->rfind('/') + 1)) : nullptr;
}

const BlockDevice* Inventory::at(const std::string& path) const
{
    constexpr std::string_view mapperFolder = "/dev/mapper/";
    constexpr std::string_view devFolder = "/dev/";
    const Node node = nodeAt(path);
    if (node.kind() == FileKind::blockDevice)
        return numbered(node.number);
    if (node.kind() != FileKind::none || !startsWith(path, devFolder))
        return nullptr;
    if (startsWith(path, mapperFolder))
        return mapNamed(std::string_view(path).substr(mapperFolder.size()));
    std::string name = path.substr(devFolder.size());
    std::replace(name.begin(), name.end(), '/', '!');
    return named(name);
}

const BlockDevice* Inventory::parentOf(const BlockDevice& device) const
{
    const auto found = relations().parent.find(&device);
    return found == relations().parent.end() ? nullptr : found->second;
}

Inventory::Devices Inventory::partitionsOf(const BlockDevice& device) const
{
    return find(relations().partitions, device);
}

Inventory::Devices Inventory::membersOf(const BlockDevice& device) const
{
    return find(relations().members, device);
}

Inventory::Devices Inventory::memberOf(const BlockDevice& device) const
{
    return find(relations().memberOf, device);
}

const BlockDevice* Inventory::multipathOver(const BlockDevice& device) const
{
    for (const BlockDevice* over : memberOf(device)) {
        if (over->kind() == DeviceKind::multipath)
            return over;
    }
    return nullptr;
}

const NvmeLinks& Inventory::nvmeLinks() const
{
    if (!m_nvmeLinks)
        m_nvmeLinks = readNvmeLinks(m_roots);
    return *m_nvmeLinks;
}

const Inventory::Relations& Inventory::relations() const
{
    if (!m_relations) {
        m_relations.emplace();
        for (const BlockDevice& device : m_devices)
            relate(device, *m_relations);
        for (auto& [disk, partitions] : m_relations->partitions)
            std::sort(partitions.begin(), partitions.end(),
                      [](const BlockDevice* a, const BlockDevice* b) {
                          return a->partnum() < b->partnum();
                      });
    }
    return *m_relations;
}

void Inventory::relate(const BlockDevice& device, Relations& relations) const
{
    Devices below;
    if (device.kind() == DeviceKind::partition)
        below.push_back(named(device.container()));
    else if (mayHaveMembers(device))
        for (const std::string& name : device.slaves())
            below.push_back(named(name));
    below.erase(std::remove(below.begin(), below.end(), nullptr), below.end());
    if (below.empty())
        return;
    if (device.partnum() && below.size() == 1) {
        relations.parent.emplace(&device, below.front());
        relations.partitions[below.front()].push_back(&device);
        return;
    }
    std::sort(below.begin(), below.end(), [](const BlockDevice* a, const BlockDevice* b) {
        return a < b; // the order of m_devices
    });
    for (const BlockDevice* member : below)
        relations.memberOf[member].push_back(&device);
    relations.members.emplace(&device, std::move(below));
}

std::vector<std::string> pathsOf(const Inventory::Devices& devices)
{
    std::vector<std::string> paths;
    paths.reserve(devices.size());
    for (const BlockDevice* device : devices)
        paths.push_back(device->path());
    return paths;
}

} // namespace command
