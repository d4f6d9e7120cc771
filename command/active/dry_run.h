#ifndef ACTIVE_DRY_RUN_H
#define ACTIVE_DRY_RUN_H

#include <optional>
#include <string>
#include <vector>

#include "names/drivers.h"
#include "output/columns.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// A command that a lookup would run.
struct PlannedCommand {
    std::string name;
    const Driver* owner;
    std::optional<CommandLine> command; // nothing when none is run
    std::string when;
};

/// What the lookup of `path`'s active path would run. NODE stands for a node's name. One element
/// without a command when none is run. Runs nothing.
std::vector<PlannedCommand> dryRun(CDmpClaimManager& manager, const std::string& path,
                                   bool refresh);

const Columns<PlannedCommand>& plannedColumns();

} // namespace command

#endif
