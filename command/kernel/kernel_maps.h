#ifndef KERNEL_KERNEL_MAPS_H
#define KERNEL_KERNEL_MAPS_H

#include <filesystem>
#include <string>
#include <vector>

namespace command {

/// A device of the kernel's device-mapper.
struct KernelMap {
    std::string name; // of its node under /dev/mapper
    std::string uuid; // set by the program that made it; often empty

    /// Made by the multipath daemon.
    ///
    ///     uuid = "mpath-" wwid
    bool isMultipathDisk() const;

    /// A partition of such a device.
    ///
    ///     uuid = "part" digit+ "-mpath-" wwid
    bool isMultipathPartition() const;
};

/// The maps in `sysfsBlock` (see blockDevices), sorted by name. Leaves out maps that vanish
/// meanwhile.
std::vector<KernelMap> kernelMaps(const std::filesystem::path& sysfsBlock);

} // namespace command

#endif
