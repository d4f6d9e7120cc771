#include "tests/support/terminal.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

Terminal::Terminal(const winsize& size)
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

std::string Terminal::written() const
{
    std::string text;
    char block[4096];
    for (ssize_t size = 0; (size = read(m_screen.number(), block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(size));
    return text;
}

StreamOnTerminal::StreamOnTerminal(int stream, const Terminal& terminal)
    : m_stream(stream), m_before(dup(stream))
{
    dup2(terminal.descriptor(), stream);
}

StreamOnTerminal::~StreamOnTerminal()
{
    dup2(m_before.number(), m_stream);
}
