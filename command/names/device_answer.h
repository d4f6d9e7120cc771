#ifndef NAMES_DEVICE_ANSWER_H
#define NAMES_DEVICE_ANSWER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "names/drivers.h"
#include "output/columns.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// What the library says of a path.
struct DeviceAnswer {
    std::string name;
    const Driver* owner; // null when nobody claims the path
    std::uint32_t claim;
    bool isPartition;
    std::optional<std::string> disk;     // of an owned path
    std::optional<unsigned int> partnum; // of a partition whose driver reads the number back
};

DeviceAnswer deviceAnswer(CDmpClaimManager& manager, const std::string& path);

const Columns<DeviceAnswer>& deviceColumns();

/// A partition of a disk.
struct PartitionAnswer {
    std::optional<std::string> path; // nothing when nobody claims the disk
    std::string disk;
    unsigned int partnum;
    const Driver* owner;
    std::uint32_t claim;
};

PartitionAnswer partitionAnswer(CDmpClaimManager& manager, const std::string& disk,
                                unsigned int partnum);

const Columns<PartitionAnswer>& partitionColumns();

/// A claimed prefix.
struct PrefixAnswer {
    std::string prefix;
    const Driver* owner; // the first driver that claims it
};

PrefixAnswer prefixAnswer(const std::vector<Module>& modules, const std::string& prefix);

const Columns<PrefixAnswer>& prefixColumns();

} // namespace command

#endif
