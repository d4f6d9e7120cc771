#ifndef KERNEL_BLOCK_DEVICE_H
#define KERNEL_BLOCK_DEVICE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kernel/device_kind.h"
#include "kernel/device_number.h"
#include "kernel/kernel_roots.h"

namespace command {

/// What a device has read and written since it came up.
struct IoCounters {
    std::uint64_t reads = 0;
    std::uint64_t readBytes = 0;
    std::uint64_t writes = 0;
    std::uint64_t writtenBytes = 0;
    std::uint64_t inFlight = 0;
    std::uint64_t busyMilliseconds = 0;
};

/// A block device of the kernel. Its name, kind and place are known from the start; the other facts
/// are read from sysfs each time they are asked for, because most questions need few of them. A
/// fact that the kernel does not have, or no longer has, is nothing.
class BlockDevice {
public:
    /// `roots` must outlive the device.
    BlockDevice(const KernelRoots& roots, std::string kernelName);

    /// The name in sysfs, where '!' stands for '/': "sda", "dm-0", "cciss!c0d0".
    const std::string& kernelName() const { return m_kernelName; }

    /// The path of the device's own node, which need not exist: for a map the one with its name.
    std::string path() const;

    DeviceKind kind() const { return m_kind; }

    /// Of a partition, also when it is a map.
    std::optional<unsigned int> partnum() const { return m_partnum; }

    /// The folder that holds the device's own folder. For a partition that is its disk, for an NVMe
    /// disk its controller or subsystem. Empty when it is not known.
    const std::string& container() const { return m_container; }

    /// Of a map of the device-mapper; empty for other devices.
    const std::string& mapName() const { return m_mapName; }

    /// No hardware is behind it: a map, an array, a loop device.
    bool isVirtual() const { return m_isVirtual; }

    /// The address of a SCSI disk, "2:0:0:1"; empty for other devices.
    const std::string& hctl() const { return m_hctl; }

    std::optional<DeviceNumber> number() const;
    std::optional<std::uint64_t> size() const; // bytes
    std::optional<bool> isReadOnly() const;

    /// As multipath's tools and multipath.conf have it, so that a disk and its map have the same.
    std::optional<std::string> wwid() const;

    /// "running" or what else the driver says; of a map "running" or "suspended".
    std::optional<std::string> state() const;

    /// ALUA: "active/optimized", "standby" and so on, and whether the array prefers this path.
    std::optional<std::string> accessState() const;
    std::optional<bool> isPreferredPath() const;

    std::optional<IoCounters> ioCounters() const;

    /// Set up for use: a loop device has its file, a RAM disk was written to, zram has its size.
    /// True for every other device.
    bool isInUse() const;

    /// The kernel names of the devices that it consists of, and of those that consist of it.
    std::vector<std::string> slaves() const;
    std::vector<std::string> holders() const;

    /// The names that udev gave it, in the order of their text; none without udev.
    std::vector<std::string> links() const;

    /// An attribute by its name below the device's folder, such as "queue/rotational".
    std::optional<std::string> attribute(const std::string& name) const;

private:
    std::string file(const std::string& name) const;
    std::optional<bool> flag(const std::string& name) const;
    void readPlace();
    void readMap();

    const KernelRoots* m_roots;
    std::string m_kernelName;
    std::string m_container;
    std::string m_hctl;
    std::string m_mapName;
    std::string m_mapWwid;
    std::optional<unsigned int> m_partnum;
    DeviceKind m_kind;
    bool m_isVirtual = false;
};

} // namespace command

#endif
