#ifndef DEVICE_ROW_H
#define DEVICE_ROW_H

#include <memory>
#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "row.h"

namespace command {

/// The name of the owner's driver; null without an owner.
Row ownerField(const CDmpDeviceClaimBase* owner);

/// What the library says of a path: name, owner, claim, partition, disk, partnum. Without an owner
/// there is no disk either; without a partition, or when its driver does not read the number back,
/// no number.
Row deviceRow(CDmpClaimManager& manager, const std::string& path);

/// Partition `partnum` of `disk`: path, disk, partnum, owner, claim. Without an owner there is no
/// path.
Row partitionRow(CDmpClaimManager& manager, const std::string& disk, unsigned int partnum);

/// A claimed prefix and the first of `modules` that claims it: prefix, owner.
Row prefixRow(const std::vector<std::unique_ptr<CDmpDeviceClaimBase>>& modules,
              const std::string& prefix);

} // namespace command

#endif
