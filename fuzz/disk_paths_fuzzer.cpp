// Any bytes as what the device-mapper and sysfs say of the paths of two disks, one behind a
// multipath map and one of NVMe: each path has a name, and is in use when it is active.
//
//     input = { value NUL }                the map's status, then the files in the order of `files`
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kernel/inventory.h"
#include "multipath/disk_paths.h"
#include "require.h"
#include "tests/support/made_up_machine.h"

namespace {

constexpr const char* files[] = {
    "block/sda/device/state",    "block/sda/device/access_state", "block/sda/device/preferred_path",
    "nvme/nvme0/state",          "nvme/nvme0/transport",          "nvme/nvme1/state",
    "block/nvme0c0n1/ana_state", "block/nvme0c1n1/ana_state"};

/// A machine with the files, which are empty.
class Machine : public MadeUpMachine {
public:
    Machine()
    {
        addDisk("sda", "8:0", "0:0:0:1");
        addDisk("sdb", "8:16", "1:0:0:1");
        addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        const std::filesystem::path subsystem = sysfs("class/nvme-subsystem/nvme-subsys0");
        create_directories(subsystem);
        add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        for (const std::string number : {"0", "1"}) {
            const std::filesystem::path controller = sysfs("class/nvme/nvme" + number);
            create_directories(controller);
            create_directory_symlink(controller, subsystem / ("nvme" + number));
            add("pci0000:00/nvme/nvme" + number, "nvme0c" + number + "n1", "259:1" + number);
        }
    }

    void write(std::size_t file, const std::string& value)
    {
        if (std::exchange(m_written[file], value) != value)
            std::ofstream(sysfs("class/") / files[file]) << value << '\n';
    }

private:
    std::vector<std::string> m_written = std::vector<std::string>(std::size(files), "unwritten");
};

void check(const command::DiskPaths& disk)
{
    bool hasUsedPath = false;
    for (const command::DiskPath& path : disk.paths) {
        FUZZ_REQUIRE(!path.name.empty());
        FUZZ_REQUIRE((path.state == command::PathState::active) == (path.isUsed == true));
        hasUsedPath = hasUsedPath || path.isUsed == true;
    }
    FUZZ_REQUIRE(disk.hasUsedPath().value_or(false) == hasUsedPath);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Machine machine;
    std::istringstream values(std::string(data, data + size));
    std::string status;
    std::getline(values, status, '\0');
    for (std::size_t file = 0; file < std::size(files); ++file) {
        std::string value;
        std::getline(values, value, '\0');
        machine.write(file, value);
    }
    const command::Inventory inventory(machine.roots());
    for (const char* name : {"dm-0", "nvme0n1"}) {
        check(command::diskPaths(inventory, *inventory.named(name),
                                 [&](const command::BlockDevice&) -> command::MapStatus {
                                     return {{}, "multipath", status};
                                 }));
    }
    return 0;
}
