#include "kernel/nvme.h"

#include <string_view>

#include "kernel/sysfs_file.h"

namespace command {

namespace {

constexpr std::string_view controllerMark = "nvme";

NvmeController readController(const Inventory& inventory, const std::string& name)
{
    const std::string folder = inventory.roots().sysfs + "/class/nvme/" + name;
    return {name, readAttribute(folder + "/state"), readAttribute(folder + "/transport"),
            readAttribute(folder + "/address")};
}

/// A multipathed disk is in its subsystem's folder, any other in its controller's.
bool isMultipathed(const NvmeLinks& links, const BlockDevice& disk)
{
    return links.controllers.count(disk.container()) > 0;
}

/// The path's kernel name has the controller's number within the disk's:
///
///     nvme0n1 through nvme3 = nvme0c3n1
const BlockDevice* pathDevice(const Inventory& inventory, const BlockDevice& disk,
                              const std::string& controller)
{
    std::string name = disk.kernelName();
    const std::size_t mark = name.find('n', controllerMark.size());
    if (mark == std::string::npos)
        return nullptr;
    name.insert(mark, 'c' + controller.substr(controllerMark.size()));
    return inventory.named(name);
}

} // namespace

std::optional<NvmeSubsystem> nvmeSubsystem(const Inventory& inventory, const BlockDevice& disk)
{
    const NvmeLinks& links = inventory.nvmeLinks();
    std::string name = disk.container();
    if (!isMultipathed(links, disk)) {
        const auto found = links.subsystem.find(disk.container());
        if (found == links.subsystem.end())
            return std::nullopt;
        name = found->second;
    }
    const std::string folder = inventory.roots().sysfs + "/class/nvme-subsystem/" + name;
    return NvmeSubsystem{name, readAttribute(folder + "/subsysnqn"),
                         readAttribute(folder + "/iopolicy")};
}

std::vector<NvmePath> nvmePaths(const Inventory& inventory, const BlockDevice& disk)
{
    const NvmeLinks& links = inventory.nvmeLinks();
    std::vector<NvmePath> paths;
    if (!isMultipathed(links, disk)) {
        if (isNvmeController(disk.container()))
            paths.push_back({readController(inventory, disk.container()), &disk, std::nullopt});
        return paths;
    }
    for (const std::string& name : links.controllers.at(disk.container())) {
        const BlockDevice* device = pathDevice(inventory, disk, name);
        paths.push_back({readController(inventory, name), device,
                         device == nullptr ? std::nullopt : device->attribute("ana_state")});
    }
    return paths;
}

} // namespace command
