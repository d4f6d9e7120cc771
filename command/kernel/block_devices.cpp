#include "kernel/block_devices.h"

#include <algorithm>
#include <cstring>
#include <system_error>

#include "text/text.h"

namespace fs = std::filesystem;

namespace command {

namespace {

constexpr char powerPathPrefix[] = "emcpower";

std::vector<fs::directory_entry> entriesOf(const fs::path& folder)
{
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator()) {
        entries.push_back(*entry);
        entry.increment(error);
    }
    return entries;
}

/// A node that controls a driver is a character device, or is named "control".
bool isControlNode(const fs::directory_entry& node)
{
    std::error_code error;
    return node.path().filename() == "control" || node.is_character_file(error);
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
    for (const fs::directory_entry& entry : entriesOf(sysfsBlock))
        paths.push_back(sysfsDevice(entry.path().filename()));
    for (const fs::directory_entry& node : entriesOf(dev / "mapper")) {
        if (!isControlNode(node))
            paths.push_back("/dev/mapper/" + node.path().filename().string());
    }
    for (const fs::directory_entry& node : entriesOf(dev)) {
        const std::string name = node.path().filename();
        if (startsWith(name, powerPathPrefix) && !isControlNode(node))
            paths.push_back("/dev/" + name);
    }
    std::sort(paths.begin(), paths.end(), comesBefore);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

} // namespace command
