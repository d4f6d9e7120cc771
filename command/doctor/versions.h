#ifndef DOCTOR_VERSIONS_H
#define DOCTOR_VERSIONS_H

#include "output/document.h"

namespace command {

/// Of what answers here: dmpclaim, kernel, system (null when the system does not tell).
Document versions();

} // namespace command

#endif
