#include "regular_file.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"
#include "write_all.h"

namespace simulator {

namespace {

[[noreturn]] void refuse(const char* failure, const std::string& path)
{
    throw Error(std::string(failure) + " " + path + ": it is no regular file; remove it");
}

} // namespace

RegularFile::RegularFile(std::string path, int flags, mode_t mode)
    : m_path(std::move(path)),
      m_failure((flags & O_ACCMODE) == O_RDONLY ? "cannot read" : "cannot write"),
      m_descriptor(open(m_path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode))
{
    if (m_descriptor < 0) {
        // ELOOP: a symbolic link (O_NOFOLLOW). ENXIO: a FIFO that has no reader.
        if (errno == ELOOP || errno == ENXIO)
            refuse(m_failure, m_path);
        failWithErrno(m_failure, m_path);
    }
    struct stat status {};
    fstat(m_descriptor, &status);
    m_mode = status.st_mode;
    if (S_ISREG(m_mode))
        return;
    close(m_descriptor);
    refuse(m_failure, m_path);
}

RegularFile::~RegularFile()
{
    close(m_descriptor);
}

void RegularFile::lock() const
{
    if (flock(m_descriptor, LOCK_EX) != 0)
        failWithErrno("cannot lock", m_path);
}

mode_t RegularFile::permissions() const
{
    return m_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
}

std::string RegularFile::read() const
{
    std::string text;
    char block[65536];
    for (ssize_t size = 0; (size = ::read(m_descriptor, block, sizeof block)) != 0;) {
        if (size < 0)
            failWithErrno(m_failure, m_path);
        text.append(block, static_cast<std::size_t>(size));
    }
    return text;
}

void RegularFile::write(std::string_view text) const
{
    if (!writeAll(m_descriptor, text))
        failWithErrno(m_failure, m_path);
}

} // namespace simulator
