#ifndef DOCTOR_TOOL_FILES_H
#define DOCTOR_TOOL_FILES_H

#include "doctor/finding.h"
#include "pdk/include/czetracelog.h"

namespace command {

/// Checks that the volume manager's tools can be run. Returns whether disks can be asked about.
bool checkTools(const koze_pdk_4_4::CZeTraceLogHandle& log, const FindingReceiver& report);

} // namespace command

#endif
