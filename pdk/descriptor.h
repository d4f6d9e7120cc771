#ifndef PDK_DESCRIPTOR_H
#define PDK_DESCRIPTOR_H

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace koze_pdk_4_4 {

/// Owns a descriptor, or none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { reset(); }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

    void reset()
    {
        if (isOpen())
            close(m_number);
        m_number = -1;
    }

    /// Gives it up without closing it.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

/// Returns `opened`, or, when its number is 0, 1 or 2, a close-on-exec duplicate above 2, and
/// closes `opened`: where a host has closed stdin, stdout or stderr, these numbers stay free.
/// Throws std::system_error on failure.
inline Descriptor moveAboveStdio(Descriptor opened)
{
    if (opened.number() > STDERR_FILENO)
        return opened;
    const int moved = fcntl(opened.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (moved >= 0)
        return Descriptor(moved);
    const int reason = errno == EINVAL ? EMFILE : errno; // RLIMIT_NOFILE allows no number above 2
    throw std::system_error(reason, std::generic_category(), "cannot open a descriptor");
}

} // namespace koze_pdk_4_4

#endif
