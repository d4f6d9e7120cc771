#include "kernel/udev_links.h"

#include <algorithm>
#include <memory>

#include <libudev.h>

namespace command {

std::vector<std::string> udevLinks(const std::string& sysfsFolder)
{
    const std::unique_ptr<udev, udev* (*)(udev*)> context(udev_new(), udev_unref);
    const std::unique_ptr<udev_device, udev_device* (*)(udev_device*)> device(
        context ? udev_device_new_from_syspath(context.get(), sysfsFolder.c_str()) : nullptr,
        udev_device_unref);
    std::vector<std::string> links;
    if (!device)
        return links;
    udev_list_entry* entry = udev_device_get_devlinks_list_entry(device.get());
    for (; entry != nullptr; entry = udev_list_entry_get_next(entry))
        links.emplace_back(udev_list_entry_get_name(entry));
    std::sort(links.begin(), links.end());
    return links;
}

} // namespace command
