#ifndef TESTS_SUPPORT_DESCRIPTOR_H
#define TESTS_SUPPORT_DESCRIPTOR_H

#include <utility>

#include <fcntl.h>
#include <unistd.h>

/// An open descriptor, closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    void close()
    {
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }

    int number() const { return m_number; }

private:
    int m_number;
};

inline Descriptor openFile(const char* path, int flags)
{
    return Descriptor(open(path, flags | O_CLOEXEC, 0600));
}

#endif
