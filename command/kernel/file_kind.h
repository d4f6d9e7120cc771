#ifndef KERNEL_FILE_KIND_H
#define KERNEL_FILE_KIND_H

#include <string>

#include <sys/types.h>

#include "kernel/device_number.h"

namespace command {

enum class FileKind { none, regular, blockDevice, other };

/// The file that a path leads to, as one stat(2) reports it. Links are followed.
struct Node {
    mode_t mode = 0;     // 0 when there is no file, or stat fails
    DeviceNumber number; // of a device's node

    FileKind kind() const;
};

Node nodeAt(const std::string& path);

inline FileKind fileKind(const std::string& path)
{
    return nodeAt(path).kind();
}

} // namespace command

#endif
