#ifndef KERNEL_FILE_KIND_H
#define KERNEL_FILE_KIND_H

#include <string>

#include <sys/types.h>

namespace command {

enum class FileKind { none, regular, blockDevice, other };

/// What a path leads to, links followed, as one stat told it.
struct Node {
    mode_t mode = 0; // 0 when there is nothing, or it cannot be seen

    FileKind kind() const;
};

Node nodeAt(const std::string& path);

inline FileKind fileKind(const std::string& path)
{
    return nodeAt(path).kind();
}

} // namespace command

#endif
