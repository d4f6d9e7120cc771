#include "doctor/node_remedies.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "text/shell_word.h"
#include "text/text.h"

namespace command {

namespace {

constexpr std::string_view devFolder = "/dev/";
constexpr std::string_view mapperFolder = "/dev/mapper/";

std::string remakeMapNode(const std::string& path)
{
    return "dmsetup mknodes -- " + shellWord(path.substr(mapperFolder.size()));
}

} // namespace

std::string sysfsName(const std::string& path)
{
    std::string name = path.substr(devFolder.size());
    std::replace(name.begin(), name.end(), '/', '!');
    return name;
}

bool isMapperPath(const std::string& path)
{
    return startsWith(path, mapperFolder);
}

std::string makeNodeCommand(const std::string& path, const BlockDevice& device)
{
    if (isMapperPath(path))
        return remakeMapNode(path);
    const std::optional<DeviceNumber> number = device.number();
    if (!number)
        return {};
    return "mknod " + shellWord(path) + " b " + std::to_string(number->major) + ' ' +
           std::to_string(number->minor);
}

std::string removeNodeCommand(const std::string& path)
{
    return isMapperPath(path) ? remakeMapNode(path) : "rm " + shellWord(path);
}

std::string moveAwayCommand(const std::string& path)
{
    return "mv -n -- " + shellWord(path) + " /root/";
}

} // namespace command
