#ifndef NAMES_KERNEL_COLUMNS_H
#define NAMES_KERNEL_COLUMNS_H

#include "names/device_answer.h"

namespace command {

/// What the kernel has at an answer's path: none where it has no device, or is not asked. Each
/// value is read from sysfs when it is asked for.
const Columns<DeviceAnswer>& kernelColumns();

} // namespace command

#endif
