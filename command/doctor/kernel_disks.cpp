#include "doctor/kernel_disks.h"

#include <optional>
#include <string>
#include <string_view>

#include "kernel/nvme.h"
#include "text/text.h"

namespace command {

namespace {

/// Of a SCSI disk: the kernel's state, and the access state (ALUA) where the array has one.
PathState scsiState(const BlockDevice& path)
{
    if (path.state() != "running")
        return PathState::offline;
    const std::string access = path.accessState().value_or("active/optimized");
    if (startsWith(access, "active"))
        return PathState::active;
    return access == "standby" || access == "transitioning" ? PathState::standby
                                                            : PathState::failed;
}

/// Of an NVMe path: the controller's state, and the access state (ANA) where there is one.
PathState nvmeState(const NvmePath& path)
{
    if (path.controller.state != "live")
        return PathState::offline;
    const std::string access = path.anaState.value_or("optimized");
    if (path.device == nullptr || access == "persistent-loss")
        return PathState::failed;
    return access == "inaccessible" || access == "change" ? PathState::standby : PathState::active;
}

MultipathDisk mapDisk(const Inventory& inventory, const BlockDevice& map)
{
    MultipathDisk disk{map.path(), "device-mapper", {}};
    for (const BlockDevice* member : inventory.membersOf(map))
        disk.paths.push_back({member->kernelName(), scsiState(*member)});
    return disk;
}

MultipathDisk nvmeDisk(const Inventory& inventory, const BlockDevice& device)
{
    MultipathDisk disk{device.path(), "nvme", {}};
    for (const NvmePath& path : nvmePaths(inventory, device))
        disk.paths.push_back(
            {path.device == nullptr ? path.controller.name : path.device->kernelName(),
             nvmeState(path)});
    return disk;
}

/// The kernel puts the disks that it multipaths into their subsystem.
bool isMultipathedNvme(const BlockDevice& device)
{
    return device.kind() == DeviceKind::nvme && startsWith(device.container(), "nvme-subsys");
}

} // namespace

std::vector<MultipathDisk> kernelDisks(const Inventory& inventory)
{
    std::vector<MultipathDisk> disks;
    for (const BlockDevice& device : inventory.devices()) {
        if (device.kind() == DeviceKind::multipath)
            disks.push_back(mapDisk(inventory, device));
        else if (isMultipathedNvme(device))
            disks.push_back(nvmeDisk(inventory, device));
    }
    return disks;
}

} // namespace command
