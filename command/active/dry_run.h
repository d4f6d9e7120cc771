#ifndef ACTIVE_DRY_RUN_H
#define ACTIVE_DRY_RUN_H

#include <optional>
#include <string>
#include <vector>

#include "active/lookup_rules.h"
#include "names/drivers.h"
#include "output/columns.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// A command that a lookup would run.
struct PlannedCommand {
    std::string name;
    const Driver* owner;
    std::optional<CommandLine> command; // nothing when the lookup would run none
    std::string when;
};

/// The commands that a lookup of `path` would run, with NODE for a node's name. One element without
/// a command when the lookup would run none. Runs nothing.
std::vector<PlannedCommand> dryRun(CDmpClaimManager& manager, const std::string& path,
                                   const LookupRules& rules);

const Columns<PlannedCommand>& plannedColumns();

} // namespace command

#endif
