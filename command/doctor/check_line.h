#ifndef DOCTOR_CHECK_LINE_H
#define DOCTOR_CHECK_LINE_H

#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/report.h"

namespace command {

/// What a monitoring plugin prints and ends with.
struct CheckResult {
    int status; // 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN
    std::string line;
};

/// The result of an examination as one line with performance data:
///
///     DMPCLAIM WARNING - 1 of 24 disks has lost a path: mpatha (sdb failed) | disks=24;;;; ...
///
/// UNKNOWN: the examination ended early, and what it found until then is no error.
CheckResult checkResult(const Report& report, const std::vector<Finding>& findings);

/// The result when nothing could be examined.
CheckResult unknownResult(const std::string& reason);

} // namespace command

#endif
