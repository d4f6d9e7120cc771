#include "names/agreement.h"

namespace command {

namespace {

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
    return driverOf(map == nullptr ? disk.kind() : map->kind());
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
