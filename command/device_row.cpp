#include "device_row.h"

#include <algorithm>

#include "drivers.h"

namespace {

using command::Row;

// No value of a partition number is reserved. One of these that comes back from a call was left
// alone by the driver, or happens to be the partition's number: the other one tells which.
constexpr unsigned int unlikelyNumber = 0x5eed5eed;
constexpr unsigned int otherUnlikelyNumber = 0xdeafdeaf;

bool isWritten(CDmpClaimManager& manager, const std::string& path, unsigned int number)
{
    if (number != unlikelyNumber)
        return true;
    number = otherUnlikelyNumber;
    manager.removePartitionSuffix(path, number);
    return number != otherUnlikelyNumber;
}

} // namespace

namespace command {

Row ownerField(const CDmpDeviceClaimBase* owner)
{
    return owner == nullptr ? Row() : Row(driverName(owner));
}

Row deviceRow(CDmpClaimManager& manager, const std::string& path)
{
    CDmpDeviceClaimBase* owner = nullptr;
    const std::uint32_t claim = manager.getClaimModule(owner, path);
    Row row = {{"name", path},    {"owner", ownerField(owner)},
               {"claim", claim},  {"partition", false},
               {"disk", nullptr}, {"partnum", nullptr}};
    if (owner == nullptr)
        return row;
    unsigned int number = unlikelyNumber;
    row["disk"] = manager.removePartitionSuffix(path, number);
    row["partition"] = manager.isPartition(path);
    if (row["partition"] && isWritten(manager, path, number))
        row["partnum"] = number;
    return row;
}

Row partitionRow(CDmpClaimManager& manager, const std::string& disk, unsigned int partnum)
{
    CDmpDeviceClaimBase* owner = nullptr;
    const std::uint32_t claim = manager.getClaimModule(owner, disk);
    Row row = {{"path", nullptr},
               {"disk", disk},
               {"partnum", partnum},
               {"owner", ownerField(owner)},
               {"claim", claim}};
    if (owner != nullptr)
        row["path"] = manager.appendPartitionSuffix(disk, partnum);
    return row;
}

Row prefixRow(const std::vector<std::unique_ptr<CDmpDeviceClaimBase>>& modules,
              const std::string& prefix)
{
    for (const auto& module : modules) {
        const std::vector<std::string> prefixes = module->getDeviceClaimStrings();
        if (std::find(prefixes.begin(), prefixes.end(), prefix) != prefixes.end())
            return {{"prefix", prefix}, {"owner", ownerField(module.get())}};
    }
    return {{"prefix", prefix}, {"owner", nullptr}};
}

} // namespace command
