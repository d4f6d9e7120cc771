#ifndef KERNEL_INVENTORY_H
#define KERNEL_INVENTORY_H

#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "kernel/block_device.h"
#include "kernel/file_kind.h"
#include "kernel/nvme_links.h"

namespace command {

/// The block devices that the kernel has, read from sysfs without privileges.
///
/// Takes time in proportion to the devices. Used by one thread: relations are read when they are
/// first asked for. Throws std::bad_alloc only. A device that vanishes loses its facts.
class Inventory {
public:
    using Devices = std::vector<const BlockDevice*>;

    explicit Inventory(KernelRoots roots = {});
    Inventory(const Inventory&) = delete;
    Inventory& operator=(const Inventory&) = delete;

    const KernelRoots& roots() const { return m_roots; }

    /// Why the list of devices could not be read, if it could not. There are no devices then.
    std::error_code error() const { return m_error; }

    /// All devices by their path, with numbers in numeric order.
    const std::vector<BlockDevice>& devices() const { return m_devices; }

    // Null when the kernel has no such device.

    const BlockDevice* named(std::string_view kernelName) const;
    const BlockDevice* mapNamed(std::string_view name) const;
    const BlockDevice* numbered(const DeviceNumber& number) const;

    /// The device whose node the path leads to, links followed. A device whose node in "/dev/"
    /// is missing is found by the path of that node.
    const BlockDevice* at(const std::string& path) const;

    /// The file at the path, links followed.
    Node nodeAt(const std::string& path) const { return command::nodeAt(m_roots.fileOf(path)); }

    /// The disk of a partition, also when both are maps; else null.
    const BlockDevice* parentOf(const BlockDevice& device) const;

    /// The partitions of a disk in the order of their numbers, also when they are maps.
    Devices partitionsOf(const BlockDevice& device) const;

    /// The devices that it consists of: the paths of a multipath map, the disks of an array. Not
    /// the disk of a partition.
    Devices membersOf(const BlockDevice& device) const;

    /// The devices that consist of it. Not its partitions.
    Devices memberOf(const BlockDevice& device) const;

    /// The multipath map that has the device as a path; null when none has.
    const BlockDevice* multipathOver(const BlockDevice& device) const;

    const NvmeLinks& nvmeLinks() const;

private:
    /// Which devices consist of which.
    struct Relations {
        std::unordered_map<const BlockDevice*, Devices> members;
        std::unordered_map<const BlockDevice*, Devices> memberOf;
        std::unordered_map<const BlockDevice*, Devices> partitions;
        std::unordered_map<const BlockDevice*, const BlockDevice*> parent;
    };

    const Relations& relations() const;
    void readDevices();
    void relate(const BlockDevice& device, Relations& relations) const;

    KernelRoots m_roots;
    std::error_code m_error;
    std::vector<BlockDevice> m_devices;
    std::unordered_map<std::string_view, const BlockDevice*> m_named;
    std::unordered_map<std::string_view, const BlockDevice*> m_mapNamed;
    mutable std::optional<Relations> m_relations;
    mutable std::optional<NvmeLinks> m_nvmeLinks;
};

/// Their paths, in the same order.
std::vector<std::string> pathsOf(const Inventory::Devices& devices);

} // namespace command

#endif
