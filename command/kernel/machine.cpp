#include "kernel/machine.h"

#include "kernel/sysfs_file.h"

namespace command {

const Inventory& Machine::inventory() const
{
    if (!m_inventory)
        m_inventory.emplace(m_roots);
    return *m_inventory;
}

const BlockDevice* Machine::resolve(const std::string& text) const
{
    const Node node = nodeAt(text);
    if (node.kind() == FileKind::blockDevice)
        return inventory().numbered(node.number);
    if (const std::optional<DeviceNumber> number = parseDeviceNumber(text))
        return inventory().numbered(*number);
    const bool isName = text.find('/') == std::string::npos;
    if (isName && fileKind(m_roots.blockFolder() + '/' + text) != FileKind::none)
        return inventory().named(text);
    return nullptr;
}

const BlockDevice* Machine::find(const std::string& text) const
{
    const BlockDevice* device = resolve(text);
    return device == nullptr ? inventory().at(text) : device;
}

} // namespace command
