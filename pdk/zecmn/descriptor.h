#ifndef ZECMN_DESCRIPTOR_H
#define ZECMN_DESCRIPTOR_H

#include <string>
#include <utility>

namespace koze_pdk_4_4::runner {

/// Owns a descriptor, or none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { reset(); }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    void reset();

private:
    int m_number;
};

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

// Descriptors opened here are close-on-exec and above 2: where a host has closed stdin, stdout or
// stderr, these numbers stay free. All functions throw std::system_error on failure.

/// Returns `opened`, or, when its number is 0, 1 or 2, a duplicate above 2, and closes `opened`.
Descriptor moveAboveStdio(Descriptor opened);

Pipe openPipe();

/// Opens what a program reads as stdin: `text`, or /dev/null when it is empty. A memfd, not a pipe:
/// a program that does not read it raises no SIGPIPE in the host.
Descriptor openInput(const std::string& text);

} // namespace koze_pdk_4_4::runner

#endif
