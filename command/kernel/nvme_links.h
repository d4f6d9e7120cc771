#ifndef KERNEL_NVME_LINKS_H
#define KERNEL_NVME_LINKS_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kernel/kernel_roots.h"

namespace command {

/// Which controllers reach which NVMe subsystems. Read once for all disks, because the folder of a
/// subsystem names its disks as well.
struct NvmeLinks {
    std::unordered_map<std::string, std::vector<std::string>> controllers; // by subsystem, in order
    std::unordered_map<std::string, std::string> subsystem;                // by controller
};

/// Whether the name is a controller's.
///
///     controller = "nvme" digit+                  nvme3, unlike nvme0n1
bool isNvmeController(std::string_view name);

NvmeLinks readNvmeLinks(const KernelRoots& roots);

} // namespace command

#endif
