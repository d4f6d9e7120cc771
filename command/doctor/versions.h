#ifndef DOCTOR_VERSIONS_H
#define DOCTOR_VERSIONS_H

#include "output/document.h"

namespace command {

/// The versions of dmpclaim, of the kernel and of the system, which is null when unknown.
Document versions();

} // namespace command

#endif
