#ifndef DOCTOR_DOCTOR_OPTIONS_H
#define DOCTOR_DOCTOR_OPTIONS_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "doctor/finding_filter.h"

namespace command {

/// What `doctor` prints.
enum class DoctorForm { text, json, jsonLines, check, metrics, codes };

/// What the user asks of `doctor`, besides the paths and the trace.
struct DoctorOptions {
    DoctorForm form = DoctorForm::text;
    FindingFilter filter;
    bool isQuiet = false;
    unsigned int jobs = 1;
    std::size_t expectedPaths = 0;               // 0: any number
    std::optional<std::chrono::seconds> timeout; // none: no limit
    std::optional<std::string> outputFile;       // of the metrics; none: standard output
};

/// The options of `doctor` as the command line offers them.
std::vector<OptionDeclaration> doctorOptionDeclarations();

/// Throws UsageError.
DoctorOptions doctorOptions(const Options& options);

} // namespace command

#endif
