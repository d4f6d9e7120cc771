#ifndef DOCTOR_REPORT_H
#define DOCTOR_REPORT_H

#include <vector>

#include "doctor/tool_checks.h"
#include "kernel/kernel_maps.h"
#include "names/explanation.h"
#include "output/document.h"

namespace command {

/// What a support engineer asks for. The simulator replays its commands.
struct Report {
    const std::vector<Module>& modules; // in the order in which they are asked
    std::vector<Explanation> names;
    std::vector<KernelMap> maps;
    std::vector<AskedCommand> commands;
    Document::List findings;
    Document::List trace;
};

Document reportDocument(const Report& report);

} // namespace command

#endif
