#include "kernel/block_devices.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

#include "files/names_in.h"
#include "text/text.h"

namespace fs = std::filesystem;

namespace command {

namespace {

constexpr char powerPathPrefix[] = "emcpower";

/// A node that controls a driver is a character device, or is named "control".
bool isControlNode(const fs::path& folder, const std::string& name)
{
    std::error_code error;
    return name == "control" || fs::is_character_file(folder / name, error);
}

std::string sysfsDevice(std::string name)
{
    std::replace(name.begin(), name.end(), '!', '/');
    return "/dev/" + name;
}

bool comesBefore(const std::string& a, const std::string& b)
{
    return strverscmp(a.c_str(), b.c_str()) < 0;
}

} // namespace

std::vector<std::string> blockDevices(const fs::path& sysfsBlock, const fs::path& dev)
{
    std::vector<std::string> paths;
    for (std::string& name : namesIn(sysfsBlock))
        paths.push_back(sysfsDevice(std::move(name)));
    for (const std::string& name : namesIn(dev / "mapper")) {
        if (!isControlNode(dev / "mapper", name))
            paths.push_back("/dev/mapper/" + name);
    }
    for (const std::string& name : namesIn(dev)) {
        if (startsWith(name, powerPathPrefix) && !isControlNode(dev, name))
            paths.push_back("/dev/" + name);
    }
    std::sort(paths.begin(), paths.end(), comesBefore);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

} // namespace command
