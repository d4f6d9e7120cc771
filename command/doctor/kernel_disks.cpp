#include "doctor/kernel_disks.h"

namespace command {

std::vector<MultipathDisk> kernelDisks(const Inventory& inventory,
                                       const ReadMapStatus& readMapStatus)
{
    std::vector<MultipathDisk> disks;
    for (const BlockDevice& device : inventory.devices()) {
        if (kernelDriverOf(device) != PathDriver::none)
            disks.push_back(examined(diskPaths(inventory, device, readMapStatus)));
    }
    return disks;
}

} // namespace command
