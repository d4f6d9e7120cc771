#ifndef NAMES_DEVICE_ANSWER_H
#define NAMES_DEVICE_ANSWER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kernel/device_lookup.h"
#include "names/drivers.h"
#include "output/columns.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// What the library says of a path, and where to look for what the kernel has there.
struct DeviceAnswer {
    std::string name;
    const Driver* owner; // null when nobody claims the path
    std::uint32_t claim;
    bool isPartition;
    std::optional<std::string> disk;     // of an owned path
    std::optional<unsigned int> partnum; // of a partition whose driver reads the number back

    DeviceLookup kernel = {}; // where the kernel's facts are
    std::string given = {};   // what --resolve replaced by the name, if it did

    const BlockDevice* device() const { return kernel.at(name); }
};

/// The machine of `kernel` must outlive the answer.
DeviceAnswer deviceAnswer(CDmpClaimManager& manager, const std::string& path,
                          const DeviceLookup& kernel = {});

/// What the library says.
const Columns<DeviceAnswer>& nameColumns();

/// That, and what the kernel has.
const Columns<DeviceAnswer>& deviceColumns();

/// A partition of a disk.
struct PartitionAnswer {
    std::optional<std::string> name; // of the partition; nothing when nobody claims the disk
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
