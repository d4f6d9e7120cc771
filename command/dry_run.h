#ifndef DRY_RUN_H
#define DRY_RUN_H

#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "row.h"

namespace command {

/// What the lookup of `path`'s active path would run, a row for each command: name, owner, command
/// and when it runs. NODE stands for a node's name. One row without a command when none is run.
/// Runs nothing.
std::vector<Row> dryRun(CDmpClaimManager& manager, const std::string& path, bool refresh);

} // namespace command

#endif
