#include "kernel/nvme.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "kernel/sysfs_file.h"
#include "text/text.h"

namespace command {

namespace {

constexpr std::string_view controllerMark = "nvme";
constexpr std::string_view subsystemMark = "nvme-subsys";

/// The digits behind the beginning; nothing for a name that is not made so.
std::optional<std::string> numberBehind(std::string_view name, std::string_view beginning)
{
    if (!startsWith(name, beginning) || !decimal(name.substr(beginning.size())))
        return std::nullopt;
    return std::string(name.substr(beginning.size()));
}

std::string subsystemFolder(const Inventory& inventory, const std::string& name)
{
    return inventory.roots().sysfs + "/class/nvme-subsystem/" + name;
}

/// A subsystem's folder links to its controllers.
std::vector<std::string> controllersOf(const std::string& folder)
{
    std::vector<std::string> names;
    for (std::string& name : namesIn(folder)) {
        if (numberBehind(name, controllerMark))
            names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return strverscmp(a.c_str(), b.c_str()) < 0;
    });
    return names;
}

NvmeController readController(const Inventory& inventory, const std::string& name)
{
    const std::string folder = inventory.roots().sysfs + "/class/nvme/" + name;
    return {name, readAttribute(folder + "/state"), readAttribute(folder + "/transport"),
            readAttribute(folder + "/address")};
}

/// A multipathed disk is in its subsystem's folder, any other in its controller's.
std::optional<std::string> subsystemName(const Inventory& inventory, const BlockDevice& disk)
{
    const std::string& container = disk.container();
    if (numberBehind(container, subsystemMark))
        return container;
    for (const std::string& name : namesIn(inventory.roots().sysfs + "/class/nvme-subsystem")) {
        const std::vector<std::string> names = controllersOf(subsystemFolder(inventory, name));
        if (std::find(names.begin(), names.end(), container) != names.end())
            return name;
    }
    return std::nullopt;
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
    const std::optional<std::string> name = subsystemName(inventory, disk);
    if (!name)
        return std::nullopt;
    const std::string folder = subsystemFolder(inventory, *name);
    return NvmeSubsystem{*name, readAttribute(folder + "/subsysnqn"),
                         readAttribute(folder + "/iopolicy")};
}

std::vector<NvmePath> nvmePaths(const Inventory& inventory, const BlockDevice& disk)
{
    std::vector<NvmePath> paths;
    if (!numberBehind(disk.container(), subsystemMark)) {
        if (numberBehind(disk.container(), controllerMark))
            paths.push_back({readController(inventory, disk.container()), &disk, std::nullopt});
        return paths;
    }
    for (const std::string& name : controllersOf(subsystemFolder(inventory, disk.container()))) {
        const BlockDevice* device = pathDevice(inventory, disk, name);
        paths.push_back({readController(inventory, name), device,
                         device == nullptr ? std::nullopt : device->attribute("ana_state")});
    }
    return paths;
}

} // namespace command
