#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

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

// Everything opened here is closed on exec and never one of the standard three, which a host may
// have closed. A descriptor that cannot be had is a std::system_error.

/// `opened`, or, when that is one of the standard three, another descriptor in its place.
Descriptor aboveStandard(Descriptor opened);

Pipe openPipe();

/// What a program reads as its standard input: `text`, or /dev/null when it is empty. A file in
/// memory, not a pipe: a program that does not read it raises no SIGPIPE here.
Descriptor openInput(const std::string& text);

} // namespace koze_pdk_4_4::runner

#endif
