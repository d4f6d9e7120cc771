#ifndef DOCTOR_REPORT_H
#define DOCTOR_REPORT_H

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "doctor/finding.h"
#include "doctor/multipath_disk.h"
#include "interrupt/stop_request.h"
#include "multipath/disk_question.h"
#include "names/explanation.h"
#include "output/document.h"

namespace command {

/// What doctor learned besides its findings. Names, maps, commands and trace are for the document
/// that a support engineer asks for; they are empty when none is made.
struct Report {
    std::vector<MultipathDisk> disks;
    StopReason end = StopReason::none;        // why the examination ended early
    std::chrono::duration<double> duration{}; // of the examination
    std::vector<Explanation> names;
    std::vector<std::pair<std::string, std::string>> maps; // name and uuid
    std::vector<AskedCommand> commands;                    // the simulator replays them
    Document::List trace;
};

/// `modules` are in the order in which they are asked.
Document reportDocument(const Report& report, const std::vector<Module>& modules,
                        const std::vector<Finding>& findings);

} // namespace command

#endif
