#ifndef KERNEL_BLOCK_DEVICES_H
#define KERNEL_BLOCK_DEVICES_H

#include <filesystem>
#include <string>
#include <vector>

namespace command {

/// The paths of the machine's block devices, each once, sorted with numbers in numeric order.
///
/// These are the names in `sysfsBlock` ("/sys/class/block", where '!' stands for '/'), and in
/// `dev` ("/dev") the nodes of "mapper" and those that begin with "emcpower". The drivers' control
/// nodes among them are left out. A folder that is missing or cannot be read adds nothing.
std::vector<std::string> blockDevices(const std::filesystem::path& sysfsBlock,
                                      const std::filesystem::path& dev);

} // namespace command

#endif
