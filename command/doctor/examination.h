#ifndef DOCTOR_EXAMINATION_H
#define DOCTOR_EXAMINATION_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cli/trace.h"
#include "doctor/doctor_options.h"
#include "doctor/finding.h"
#include "doctor/report.h"
#include "interrupt/stop_request.h"
#include "kernel/kernel_roots.h"

namespace command {

/// What is examined, and how.
struct ExaminationOrder {
    std::vector<std::string> paths; // none: the whole machine
    DoctorOptions options;
    TraceOptions trace;
    std::function<void(const std::string&)> showProgress; // called now and then; never empty
    KernelRoots roots = {};
    /// Takes each name as it is read. Empty when no report is made: then no trace, outputs of tools
    /// and maps are kept either.
    std::function<void(const Explanation&)> takeName = {};
};

/// Examines this machine and reports what it finds. Ends early once `stop` is requested; that is a
/// finding, too.
Report examine(const ExaminationOrder& order, const std::vector<Module>& modules,
               const std::shared_ptr<StopRequest>& stop, const FindingReceiver& report);

} // namespace command

#endif
