#include "names/kernel_text.h"

#include "kernel/nvme.h"
#include "names/agreement.h"
#include "text/word_list.h"

namespace command {

namespace {

std::string partitionList(const Inventory::Devices& partitions)
{
    std::vector<std::string> texts;
    for (const BlockDevice* partition : partitions)
        texts.push_back(std::to_string(*partition->partnum()) + " is " + partition->path());
    return joined(texts);
}

/// "partition 2 of /dev/sda"; empty for a whole device.
std::string partitionText(const Inventory& inventory, const BlockDevice& device)
{
    const BlockDevice* parent = inventory.parentOf(device);
    if (parent == nullptr)
        return {};
    return "partition " + std::to_string(*device.partnum()) + " of " + parent->path();
}

/// "crypt, dm-3 (254:3), 4096 bytes"
std::string deviceText(const Inventory& inventory, const BlockDevice& device)
{
    std::string text = kindName(device.kind());
    if (const std::string partition = partitionText(inventory, device); !partition.empty())
        text += ", " + partition;
    text += ", " + device.kernelName();
    if (const std::optional<DeviceNumber> number = device.number())
        text += " (" + number->text() + ')';
    if (const std::optional<std::uint64_t> size = device.size())
        text += ", " + std::to_string(*size) + " bytes";
    if (device.isReadOnly() == true)
        text += ", read-only";
    return text;
}

/// "nvme-subsys0, nqn.2014-08.org:x, paths chosen by numa"; empty for what is no NVMe disk.
std::string subsystemText(const Inventory& inventory, const BlockDevice& device)
{
    const std::optional<NvmeSubsystem> subsystem = nvmeSubsystem(inventory, device);
    if (!subsystem)
        return {};
    std::string text = subsystem->name;
    if (subsystem->nqn)
        text += ", " + *subsystem->nqn;
    if (subsystem->policy)
        text += ", paths chosen by " + *subsystem->policy;
    return text;
}

/// Why there are no facts.
std::string absenceText(const DeviceAnswer& answer)
{
    const Machine& machine = *answer.kernel.machine();
    if (const std::error_code error = machine.inventory().error())
        return "- (cannot read " + machine.roots().blockFolder() + ": " + error.message() + ')';
    if (const BlockDevice* device = machine.resolve(answer.name))
        return "- (no path, but with --resolve it is " + device->path() + ')';
    switch (machine.nodeAt(answer.name).kind()) {
    case FileKind::none:
        return "- (this machine has no such device)";
    case FileKind::blockDevice:
        return "- (a node, but the kernel has no device with its number)";
    default:
        return "- (what is there is no block device)";
    }
}

std::string agreementText(const DeviceAnswer& answer)
{
    if (agrees(answer) == true)
        return "yes";
    const Inventory& inventory = answer.kernel.machine()->inventory();
    const std::string partition = partitionText(inventory, *answer.device());
    const Driver* owner = kernelOwner(inventory, *answer.device());
    return "no: to the kernel it is " + (partition.empty() ? "no partition" : partition) +
           ", and owned by " +
           (owner == nullptr ? std::string("none of these drivers") : owner->name);
}

/// The partitions that the kernel has of a disk; of a device that has none, only when one of the
/// drivers owns it.
std::string partitionsText(const Inventory& inventory, const BlockDevice& device)
{
    std::string list = partitionList(inventory.partitionsOf(device));
    if (!list.empty())
        return list;
    return device.partnum() || kernelOwner(inventory, device) == nullptr ? "" : "none";
}

/// For a path without a device: what there is of the disk that its name tells.
std::vector<LabelledText> textsWithoutDevice(const DeviceAnswer& answer)
{
    std::vector<LabelledText> texts{{"kernel", absenceText(answer)}};
    const Inventory& inventory = answer.kernel.machine()->inventory();
    const BlockDevice* disk = answer.disk ? inventory.at(*answer.disk) : nullptr;
    if (disk == nullptr)
        return texts;
    const std::string partitions = partitionList(inventory.partitionsOf(*disk));
    texts.push_back(
        {"partitions", "of " + disk->path() + ": " + (partitions.empty() ? "none" : partitions)});
    return texts;
}

} // namespace

std::vector<LabelledText> kernelTexts(const DeviceAnswer& answer)
{
    if (answer.kernel.machine() == nullptr)
        return {};
    const BlockDevice* device = answer.device();
    if (device == nullptr)
        return textsWithoutDevice(answer);
    const Inventory& inventory = answer.kernel.machine()->inventory();
    std::vector<LabelledText> texts{
        {"kernel", deviceText(inventory, *device)},
        {"agrees", agreementText(answer), agrees(answer) == true ? Tone::plain : Tone::warning}};
    const auto add = [&](const char* label, const std::string& text) {
        if (!text.empty())
            texts.push_back({label, text});
    };
    add("subsystem", subsystemText(inventory, *device));
    add("members", joined(pathsOf(inventory.membersOf(*device))));
    add("member of", joined(pathsOf(inventory.memberOf(*device))));
    add("partitions", partitionsText(inventory, *device));
    return texts;
}

const BlockDevice* claimedTarget(CDmpClaimManager& manager, const DeviceAnswer& answer)
{
    const Machine* machine = answer.kernel.machine();
    if (answer.owner != nullptr || machine == nullptr)
        return nullptr;
    const BlockDevice* device = machine->resolve(answer.name);
    return device != nullptr && manager.claim(device->path()) != CLAIM_NONE ? device : nullptr;
}

} // namespace command
