#ifndef KERNEL_KERNEL_ROOTS_H
#define KERNEL_KERNEL_ROOTS_H

#include <string>

namespace command {

/// Where the kernel shows its devices, and where their nodes are.
struct KernelRoots {
    std::string sysfs = "/sys";
    std::string dev = "/dev";

    /// The folder that has a link to each block device.
    std::string blockFolder() const { return sysfs + "/class/block"; }

    /// The file of a path that begins with "/dev/"; any other path as it is.
    std::string fileOf(const std::string& path) const;
};

} // namespace command

#endif
