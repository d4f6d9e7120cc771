#ifndef EXPLANATION_H
#define EXPLANATION_H

#include <memory>
#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "row.h"

namespace command {

/// Why the library answers as it does about `path`: the fields of deviceRow, and
///
///     rule        "only claim", "strongest claim", "first of equals" or "nobody"
///     modules     what each of `modules` says, asked in their order: module, claim, prefixes
///     warnings    see namingWarnings: code, text
Row explanation(CDmpClaimManager& manager,
                const std::vector<std::unique_ptr<CDmpDeviceClaimBase>>& modules,
                const std::string& path);

} // namespace command

#endif
