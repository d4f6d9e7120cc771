#ifndef KERNEL_UDEV_LINKS_H
#define KERNEL_UDEV_LINKS_H

#include <string>
#include <vector>

namespace command {

/// The symbolic links that udev's database has for the device whose folder in sysfs is given,
/// sorted. None where udev does not run, and for a folder outside /sys.
std::vector<std::string> udevLinks(const std::string& sysfsFolder);

} // namespace command

#endif
