#ifndef KERNEL_NVME_H
#define KERNEL_NVME_H

#include <optional>
#include <string>
#include <vector>

#include "kernel/inventory.h"

namespace command {

/// A controller, through which the host reaches an NVMe subsystem.
struct NvmeController {
    std::string name;                     // "nvme0"
    std::optional<std::string> state;     // "live", "connecting", ...
    std::optional<std::string> transport; // "pcie", "tcp", "fc", ...
    std::optional<std::string> address;   // as the transport writes it
};

/// A path of native NVMe multipathing.
struct NvmePath {
    NvmeController controller;
    const BlockDevice* device;           // "nvme0c1n1"; null when the controller has no path now
    std::optional<std::string> anaState; // "optimized", "inaccessible", ...
};

struct NvmeSubsystem {
    std::string name;                  // "nvme-subsys0"
    std::optional<std::string> nqn;    // its qualified name
    std::optional<std::string> policy; // how paths are chosen: "numa", "round-robin", ...
};

/// The subsystem of an NVMe disk; nothing where the kernel does not say.
std::optional<NvmeSubsystem> nvmeSubsystem(const Inventory& inventory, const BlockDevice& disk);

/// The paths of an NVMe disk by their controllers: every controller of its subsystem, or its only
/// controller when the kernel does not multipath it.
std::vector<NvmePath> nvmePaths(const Inventory& inventory, const BlockDevice& disk);

} // namespace command

#endif
