#ifndef NAMES_EXPLANATION_H
#define NAMES_EXPLANATION_H

#include <cstdint>
#include <string>
#include <vector>

#include "names/device_answer.h"
#include "names/drivers.h"
#include "names/naming_warnings.h"
#include "output/document.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// What one module says of a path.
struct ModuleAnswer {
    const Driver* driver;
    std::uint32_t claim;
    std::vector<std::string> prefixes;
};

/// Why the library answers as it does about a path.
struct Explanation {
    DeviceAnswer device;
    const char* rule; // "only claim", "strongest claim", "first of equals" or "nobody"
    std::vector<ModuleAnswer> modules;
    std::vector<Warning> warnings;
};

/// Asks the manager, and each of `modules` in order. The machine of `kernel` must outlive the
/// result.
Explanation explanation(CDmpClaimManager& manager, const std::vector<Module>& modules,
                        const std::string& path, const DeviceLookup& kernel = {});

/// The columns of the device, and rule, modules (module, claim, prefixes) and warnings (code,
/// text). When a kernel is asked, also its columns and the partitions (partnum, path) that it has.
Document::Record explanationRecord(const Explanation& explanation);

} // namespace command

#endif
