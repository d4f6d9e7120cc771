#include "doctor/file_kind.h"

#include <sys/stat.h>

namespace command {

FileKind fileKind(const std::string& path)
{
    struct stat file {};
    if (stat(path.c_str(), &file) != 0)
        return FileKind::none;
    if (S_ISBLK(file.st_mode))
        return FileKind::blockDevice;
    return S_ISREG(file.st_mode) ? FileKind::regular : FileKind::other;
}

} // namespace command
