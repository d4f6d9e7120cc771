#ifndef DOCTOR_NODE_REMEDIES_H
#define DOCTOR_NODE_REMEDIES_H

#include <string>

#include "kernel/block_device.h"

namespace command {

/// The name in sysfs of the device at a path in /dev, where '!' stands for '/'.
std::string sysfsName(const std::string& path);

/// Whether the path names a node of the device-mapper.
bool isMapperPath(const std::string& path);

// Commands for a shell that mend a node. `path` is in /dev.

/// Makes the node of a device that the kernel has. Empty when the kernel does not tell its number.
std::string makeNodeCommand(const std::string& path, const BlockDevice& device);

/// Removes the node of a device that the kernel does not have.
std::string removeNodeCommand(const std::string& path);

/// Moves away a file that is in place of a device.
std::string moveAwayCommand(const std::string& path);

} // namespace command

#endif
