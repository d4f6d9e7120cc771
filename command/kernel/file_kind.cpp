#include "kernel/file_kind.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace command {

FileKind Node::kind() const
{
    if (mode == 0)
        return FileKind::none;
    if (S_ISBLK(mode))
        return FileKind::blockDevice;
    return S_ISREG(mode) ? FileKind::regular : FileKind::other;
}

Node nodeAt(const std::string& path)
{
    if (path.find('\0') != std::string::npos) // the kernel would read another, shorter path
        return {};
    struct stat file {};
    if (stat(path.c_str(), &file) != 0)
        return {};
    return {file.st_mode, {major(file.st_rdev), minor(file.st_rdev)}};
}

} // namespace command
