#include "kernel/nvme_links.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "files/names_in.h"
#include "kernel/sysfs_file.h"
#include "text/text.h"

namespace command {

namespace {

/// A subsystem's folder has links to its controllers, and the folders of its disks.
std::vector<std::string> controllersIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (std::string& name : namesIn(folder)) {
        if (isNvmeController(name))
            names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return strverscmp(a.c_str(), b.c_str()) < 0;
    });
    return names;
}

} // namespace

bool isNvmeController(std::string_view name)
{
    constexpr std::string_view beginning = "nvme";
    return startsWith(name, beginning) && decimal(name.substr(beginning.size()));
}

NvmeLinks readNvmeLinks(const KernelRoots& roots)
{
    const std::filesystem::path folder = roots.sysfs + "/class/nvme-subsystem";
    NvmeLinks links;
    for (const std::string& subsystem : namesIn(folder)) {
        std::vector<std::string> controllers = controllersIn(folder / subsystem);
        for (const std::string& controller : controllers)
            links.subsystem.emplace(controller, subsystem);
        links.controllers.emplace(subsystem, std::move(controllers));
    }
    return links;
}

} // namespace command
