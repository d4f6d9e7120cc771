// Replaces stat(2) in a program that links this file, or loads it by LD_PRELOAD: a file with the
// sticky bit passes for a block device. Making a real one takes a privilege.
#include <fcntl.h>
#include <sys/stat.h>

extern "C" int stat(const char* name, struct stat* file) noexcept
{
    const int result = fstatat(AT_FDCWD, name, file, 0);
    if (result == 0 && S_ISREG(file->st_mode) && (file->st_mode & S_ISVTX) != 0)
        file->st_mode = S_IFBLK | (file->st_mode & ACCESSPERMS);
    return result;
}
