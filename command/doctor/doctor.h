#ifndef DOCTOR_DOCTOR_H
#define DOCTOR_DOCTOR_H

#include "options.h"
#include "output_stream.h"

namespace command {

/// Examines this machine, writes what it finds, and returns the exit status: 0 when nothing is
/// wrong, 64 for warnings, 32 for errors. Text comes finding by finding, JSON at the end.
///
/// Asks the volume manager about `options.paths`, or about all native disks when there are none.
/// Ends the process when it is interrupted, see Interrupt. Throws what runCommand throws.
int runDoctor(const Options& options, OutputStream& output);

} // namespace command

#endif
