#ifndef TESTS_SUPPORT_TERMINAL_H
#define TESTS_SUPPORT_TERMINAL_H

#include <string>

#include <pty.h>

#include "tests/support/descriptor.h"

/// A raw pseudoterminal: it passes bytes on unchanged.
class Terminal {
public:
    explicit Terminal(const winsize& size = {24, 80, 0, 0});

    /// The side that programs write to.
    int descriptor() const { return m_line.number(); }

    /// What has been written since the last call.
    std::string written() const;

private:
    Descriptor m_screen;
    Descriptor m_line;
};

/// A standard stream of this process is a terminal while this lives.
class StreamOnTerminal {
public:
    StreamOnTerminal(int stream, const Terminal& terminal);
    StreamOnTerminal(const StreamOnTerminal&) = delete;
    StreamOnTerminal& operator=(const StreamOnTerminal&) = delete;
    ~StreamOnTerminal();

private:
    int m_stream;
    Descriptor m_before;
};

#endif
