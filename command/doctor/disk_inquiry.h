#ifndef DOCTOR_DISK_INQUIRY_H
#define DOCTOR_DISK_INQUIRY_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cli/trace.h"
#include "multipath/disk_question.h"

namespace command {

/// How disks are asked about.
struct InquiryOptions {
    unsigned int jobs = 1;   // questions at once
    bool forReport = false;  // keep outputs and traces
    TraceOptions trace = {}; // where the user wants trace lines
    /// Called now and then, when answers take long.
    std::function<void(std::size_t done)> progress = [](std::size_t /*done*/) {};
};

/// Asks about `disks`; returns an answer for each, in order. After an answer that must be the last,
/// or once `stop` is requested, the remaining disks are notAsked. A thread whose tool does not end
/// is detached then. Throws what a thread threw.
std::vector<DiskAnswer> askAboutDisks(const std::vector<std::string>& disks,
                                      const InquiryOptions& options,
                                      const std::shared_ptr<StopRequest>& stop);

} // namespace command

#endif
