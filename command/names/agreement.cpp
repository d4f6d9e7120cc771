#include "names/agreement.h"

#include <algorithm>
#include <string_view>

namespace command {

namespace {

/// The kernel's name of the driver that makes devices of a kind; null for those that no module
/// claims.
const char* kernelDriver(DeviceKind kind)
{
    switch (kind) {
    case DeviceKind::disk:
        return "sd";
    case DeviceKind::powerPath:
        return "emcpower";
    case DeviceKind::multipath:
    case DeviceKind::multipathPartition:
        return "device-mapper";
    default:
        return nullptr;
    }
}

bool agreeOnPartition(const DeviceAnswer& answer, const Inventory& inventory,
                      const BlockDevice& device)
{
    if (answer.isPartition != device.partnum().has_value())
        return false;
    if (!answer.isPartition)
        return true;
    return inventory.at(*answer.disk) == inventory.parentOf(device) &&
           (!answer.partnum || answer.partnum == device.partnum());
}

} // namespace

const Driver* kernelOwner(const Inventory& inventory, const BlockDevice& device)
{
    const BlockDevice* parent = inventory.parentOf(device);
    const BlockDevice& disk = parent == nullptr ? device : *parent;
    const BlockDevice* map = inventory.multipathOver(disk);
    const DeviceKind kind = map == nullptr ? disk.kind() : map->kind();
    const char* name = kernelDriver(kind);
    if (name == nullptr)
        return nullptr;
    const auto found = std::find_if(drivers().begin(), drivers().end(), [&](const Driver& driver) {
        return std::string_view(driver.kernelName) == name;
    });
    return found == drivers().end() ? nullptr : &*found;
}

std::optional<bool> agrees(const DeviceAnswer& answer)
{
    const BlockDevice* device = answer.device();
    if (device == nullptr)
        return std::nullopt;
    const Inventory& inventory = answer.kernel.machine()->inventory();
    return answer.owner == kernelOwner(inventory, *device) &&
           (answer.owner == nullptr || agreeOnPartition(answer, inventory, *device));
}

} // namespace command
