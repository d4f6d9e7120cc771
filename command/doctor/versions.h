#ifndef DOCTOR_VERSIONS_H
#define DOCTOR_VERSIONS_H

#include "row.h"

namespace command {

/// Of what answers here: dmpclaim, kernel, system (null when the system does not tell).
Row versions();

} // namespace command

#endif
