#include "names/kernel_columns.h"

#include "names/agreement.h"

namespace command {

namespace {

using Answer = const DeviceAnswer&;

const Inventory& inventoryOf(Answer answer)
{
    return answer.kernel.machine()->inventory();
}

/// A field of the device; none without a device.
template <class FieldOf>
Field ofDevice(Answer answer, FieldOf fieldOf)
{
    const BlockDevice* device = answer.device();
    return device == nullptr ? Field() : Field(fieldOf(*device));
}

Field kind(Answer answer)
{
    return ofDevice(answer,
                    [](const BlockDevice& device) { return std::string(kindName(device.kind())); });
}

Field kernelName(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) { return device.kernelName(); });
}

Field number(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) {
        const std::optional<DeviceNumber> number = device.number();
        return number ? Field(number->text()) : Field();
    });
}

Field size(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) {
        const std::optional<std::uint64_t> size = device.size();
        return size ? Field(static_cast<std::int64_t>(*size)) : Field();
    });
}

Field parent(Answer answer)
{
    return ofDevice(answer, [&](const BlockDevice& device) {
        const BlockDevice* parent = inventoryOf(answer).parentOf(device);
        return parent == nullptr ? Field() : Field(parent->path());
    });
}

Field memberOf(Answer answer)
{
    return ofDevice(answer, [&](const BlockDevice& device) {
        return pathsOf(inventoryOf(answer).memberOf(device));
    });
}

Field members(Answer answer)
{
    return ofDevice(answer, [&](const BlockDevice& device) {
        return pathsOf(inventoryOf(answer).membersOf(device));
    });
}

/// A map and its paths are one disk, which may have several identifiers: they show the map's.
Field wwid(Answer answer)
{
    return ofDevice(answer, [&](const BlockDevice& device) {
        const BlockDevice* map = inventoryOf(answer).multipathOver(device);
        return optionalField((map == nullptr ? device : *map).wwid());
    });
}

Field hctl(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) { return nonEmptyField(device.hctl()); });
}

/// SCSI disks and maps are "running", NVMe controllers "live".
Tone toneOf(const std::string& state)
{
    return state == "running" || state == "live" ? Tone::good : Tone::bad;
}

Field state(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) {
        const std::optional<std::string> state = device.state();
        return state ? Field(Mark{*state, toneOf(*state)}) : Field();
    });
}

Field links(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) { return device.links(); });
}

Field exists(Answer answer)
{
    if (answer.kernel.machine() == nullptr)
        return {};
    return answer.kernel.machine()->nodeAt(answer.name).kind() == FileKind::blockDevice;
}

Field agreement(Answer answer)
{
    const std::optional<bool> isSo = agrees(answer);
    return isSo ? Field(Flag{*isSo, *isSo ? Tone::plain : Tone::warning}) : Field();
}

} // namespace

const Columns<DeviceAnswer>& kernelColumns()
{
    static const Columns<DeviceAnswer> columns{
        {{"KIND", Kind::text, "what it is to the kernel: disk, partition, multipath, crypt, ..."},
         kind},
        {{"KNAME", Kind::text, "the kernel's own name of the device"}, kernelName},
        {{"MAJMIN", Kind::text, "the kernel's number of the device"}, number},
        {{"SIZE", Kind::number, "the size in bytes"}, size},
        {{"PARENT", Kind::text, "the disk of a partition, as the kernel has it"}, parent},
        {{"MEMBEROF", Kind::text, "the maps and arrays that consist of the device"}, memberOf},
        {{"MEMBERS", Kind::text, "the devices that it consists of, such as a map's paths"},
         members},
        {{"WWID", Kind::text, "the disk's world-wide identifier, as multipath.conf has it"}, wwid},
        {{"HCTL", Kind::text, "a SCSI disk's address: host:channel:target:lun"}, hctl},
        {{"STATE", Kind::text, "running, offline, suspended or what else the driver says"}, state},
        {{"LINKS", Kind::text, "the symbolic links that udev keeps to the device"}, links},
        {{"EXISTS", Kind::text, "whether the path is that of a block device's node"}, exists},
        {{"AGREES", Kind::text, "whether owner, disk and number by name are what the kernel has"},
         agreement},
        {{"GIVEN", Kind::text, "the path as it was given, which --resolve replaces"},
         [](Answer answer) -> Field { return answer.given.empty() ? answer.name : answer.given; }},
    };
    return columns;
}

} // namespace command
