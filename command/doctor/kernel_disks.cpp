#include "doctor/kernel_disks.h"

#include <string>
#include <string_view>

#include "text/text.h"

namespace command {

namespace {

std::string withoutFolder(const std::string& path)
{
    constexpr std::string_view dev = "/dev/";
    return startsWith(path, dev) ? path.substr(dev.size()) : path;
}

MultipathDisk examined(const DiskPaths& disk)
{
    MultipathDisk made{disk.name, driverName(disk.driver), {}};
    for (const DiskPath& path : disk.paths)
        made.paths.push_back({withoutFolder(path.name), path.state, path.isUsed.value_or(false)});
    return made;
}

} // namespace

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
