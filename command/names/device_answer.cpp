#include "names/device_answer.h"

#include <algorithm>

#include "names/kernel_columns.h"

namespace command {

namespace {

// Two sentinels: if each comes back unchanged, the driver did not write the number.
constexpr unsigned int sentinel = 0x5eed5eed;
constexpr unsigned int otherSentinel = 0xdeafdeaf;

constexpr char ownerHelp[] = "the driver that owns it";
constexpr char claimHelp[] = "how strong the claim is: 0 none, 2 native, 16 a multipath driver";

bool isWritten(CDmpClaimManager& manager, const std::string& path, unsigned int number)
{
    if (number != sentinel)
        return true;
    number = otherSentinel;
    manager.removePartitionSuffix(path, number);
    return number != otherSentinel;
}

} // namespace

DeviceAnswer deviceAnswer(CDmpClaimManager& manager, const std::string& path,
                          const DeviceLookup& kernel)
{
    CDmpDeviceClaimBase* owner = nullptr;
    const std::uint32_t claim = manager.getClaimModule(owner, path);
    DeviceAnswer answer{path, driverOf(owner), claim, false, {}, {}, kernel};
    if (owner == nullptr)
        return answer;
    unsigned int number = sentinel;
    answer.disk = manager.removePartitionSuffix(path, number);
    answer.isPartition = manager.isPartition(path);
    if (answer.isPartition && isWritten(manager, path, number))
        answer.partnum = number;
    return answer;
}

const Columns<DeviceAnswer>& nameColumns()
{
    using Answer = const DeviceAnswer&;
    static const Columns<DeviceAnswer> columns{
        {{"NAME", Kind::text, "the path"}, [](Answer answer) -> Field { return answer.name; }},
        {{"OWNER", Kind::text, ownerHelp}, [](Answer answer) { return ownerField(answer.owner); }},
        {{"CLAIM", Kind::number, claimHelp}, [](Answer answer) -> Field { return answer.claim; }},
        {{"PARTITION", Kind::text, "whether the path names a partition"},
         [](Answer answer) -> Field { return answer.isPartition; }},
        {{"DISK", Kind::text,
          "the path of the disk that holds the partition, or of the disk itself"},
         [](Answer answer) { return optionalField(answer.disk); }},
        {{"PARTNUM", Kind::number, "the number of the partition, where the driver reads it back"},
         [](Answer answer) { return optionalField(answer.partnum); }},
    };
    return columns;
}

const Columns<DeviceAnswer>& deviceColumns()
{
    static const Columns<DeviceAnswer> columns =
        concatenated<DeviceAnswer>({nameColumns(), kernelColumns()});
    return columns;
}

PartitionAnswer partitionAnswer(CDmpClaimManager& manager, const std::string& disk,
                                unsigned int partnum)
{
    CDmpDeviceClaimBase* owner = nullptr;
    const std::uint32_t claim = manager.getClaimModule(owner, disk);
    PartitionAnswer answer{{}, disk, partnum, driverOf(owner), claim};
    if (owner != nullptr)
        answer.name = manager.appendPartitionSuffix(disk, partnum);
    return answer;
}

const Columns<PartitionAnswer>& partitionColumns()
{
    using Answer = const PartitionAnswer&;
    static const Columns<PartitionAnswer> columns{
        {{"NAME", Kind::text, "the path of the partition"},
         [](Answer answer) { return optionalField(answer.name); }},
        {{"DISK", Kind::text, "the disk as it was given"},
         [](Answer answer) -> Field { return answer.disk; }},
        {{"PARTNUM", Kind::number, "the number of the partition as it was given"},
         [](Answer answer) -> Field { return answer.partnum; }},
        {{"OWNER", Kind::text, ownerHelp}, [](Answer answer) { return ownerField(answer.owner); }},
        {{"CLAIM", Kind::number, claimHelp}, [](Answer answer) -> Field { return answer.claim; }},
    };
    return columns;
}

PrefixAnswer prefixAnswer(const std::vector<Module>& modules, const std::string& prefix)
{
    for (const Module& module : modules) {
        const std::vector<std::string> prefixes = module.claims->getDeviceClaimStrings();
        if (std::find(prefixes.begin(), prefixes.end(), prefix) != prefixes.end())
            return {prefix, module.driver};
    }
    return {prefix, nullptr};
}

const Columns<PrefixAnswer>& prefixColumns()
{
    using Answer = const PrefixAnswer&;
    static const Columns<PrefixAnswer> columns{
        {{"PREFIX", Kind::text, "what a claimed path holds"},
         [](Answer answer) -> Field { return answer.prefix; }},
        {{"OWNER", Kind::text, ownerHelp}, [](Answer answer) { return ownerField(answer.owner); }},
    };
    return columns;
}

} // namespace command
