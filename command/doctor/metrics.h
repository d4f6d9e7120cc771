#ifndef DOCTOR_METRICS_H
#define DOCTOR_METRICS_H

#include <ctime>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/report.h"

namespace command {

/// The result of an examination in Prometheus' text format. `now` is the time of the examination.
std::string metricsText(const Report& report, const std::vector<Finding>& findings,
                        std::time_t now);

} // namespace command

#endif
