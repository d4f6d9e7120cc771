#include "doctor/replace_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace command {

namespace {

[[noreturn]] void fail(const std::string& path)
{
    throw std::system_error(errno, std::generic_category(), "cannot write '" + path + "'");
}

/// Removes the file unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target)
        : m_target(target), m_name(target + ".XXXXXX"),
          m_descriptor(mkostemp(m_name.data(), O_CLOEXEC))
    {
        if (m_descriptor < 0)
            fail(target);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
        if (!m_isRenamed)
            unlink(m_name.c_str());
    }

    void write(std::string_view text)
    {
        while (!text.empty()) {
            const ssize_t size = ::write(m_descriptor, text.data(), text.size());
            if (size < 0 && errno != EINTR)
                fail(m_target);
            text.remove_prefix(size < 0 ? 0 : static_cast<std::size_t>(size));
        }
    }

    /// fsync comes before the rename: after a crash the file is never empty.
    void rename()
    {
        const int descriptor = m_descriptor;
        const bool isWritten = fchmod(descriptor, 0644) == 0 && fsync(descriptor) == 0;
        if (!isWritten)
            fail(m_target);
        m_descriptor = -1;
        if (close(descriptor) != 0 || std::rename(m_name.c_str(), m_target.c_str()) != 0)
            fail(m_target);
        m_isRenamed = true;
    }

private:
    const std::string& m_target;
    std::string m_name;
    int m_descriptor;
    bool m_isRenamed = false;
};

} // namespace

void replaceFile(const std::string& path, std::string_view text)
{
    TemporaryFile file(path);
    file.write(text);
    file.rename();
}

} // namespace command
