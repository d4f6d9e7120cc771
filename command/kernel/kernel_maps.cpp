#include "kernel/kernel_maps.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>

#include "text/text.h"

namespace fs = std::filesystem;

namespace command {

namespace {

constexpr std::string_view mark = "mpath-";
constexpr std::string_view partitionMark = "part";

std::string firstLine(const fs::path& file)
{
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

} // namespace

bool KernelMap::isMultipathDisk() const
{
    return startsWith(uuid, mark);
}

bool KernelMap::isMultipathPartition() const
{
    if (!startsWith(uuid, partitionMark))
        return false;
    const std::size_t digitsEnd = uuid.find_first_not_of("0123456789", partitionMark.size());
    return digitsEnd != std::string::npos && digitsEnd > partitionMark.size() &&
           startsWith(std::string_view(uuid).substr(digitsEnd), "-" + std::string(mark));
}

std::vector<KernelMap> kernelMaps(const fs::path& sysfsBlock)
{
    std::vector<KernelMap> maps;
    std::error_code error;
    fs::directory_iterator device(sysfsBlock, error);
    for (; !error && device != fs::directory_iterator(); device.increment(error)) {
        KernelMap map{firstLine(device->path() / "dm" / "name"),
                      firstLine(device->path() / "dm" / "uuid")};
        if (!map.name.empty())
            maps.push_back(std::move(map));
    }
    std::sort(maps.begin(), maps.end(),
              [](const KernelMap& a, const KernelMap& b) { return a.name < b.name; });
    return maps;
}

} // namespace command
