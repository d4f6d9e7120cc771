#ifndef TESTS_SUPPORT_TERMINAL_H
#define TESTS_SUPPORT_TERMINAL_H

#include <string>

#include <pty.h>
#include <termios.h>

#include "tests/support/process.h"

/// A raw pseudoterminal: it passes bytes on unchanged.
class Terminal {
public:
    explicit Terminal(const winsize& size = {24, 80, 0, 0})
    {
        int screen = -1;
        int line = -1;
        termios raw{};
        cfmakeraw(&raw);
        if (openpty(&screen, &line, nullptr, &raw, &size) != 0)
            throw std::system_error(errno, std::generic_category(), "openpty");
        m_screen = Descriptor(screen);
        m_line = Descriptor(line);
        fcntl(screen, F_SETFL, O_NONBLOCK);
    }

    /// The side that programs write to.
    int descriptor() const { return m_line.number(); }

    /// What has been written since the last call.
    std::string written() const
    {
        std::string text;
        char block[4096];
        for (ssize_t size = 0; (size = read(m_screen.number(), block, sizeof block)) > 0;)
            text.append(block, static_cast<std::size_t>(size));
        return text;
    }

private:
    Descriptor m_screen;
    Descriptor m_line;
};

/// A standard stream of this process is a terminal while this lives.
class StreamOnTerminal {
public:
    StreamOnTerminal(int stream, const Terminal& terminal) : m_stream(stream), m_before(dup(stream))
    {
        dup2(terminal.descriptor(), stream);
    }

    StreamOnTerminal(const StreamOnTerminal&) = delete;
    StreamOnTerminal& operator=(const StreamOnTerminal&) = delete;
    ~StreamOnTerminal() { dup2(m_before.number(), m_stream); }

private:
    int m_stream;
    Descriptor m_before;
};

#endif
