#include "cli/terminal_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace command {

namespace {

std::size_t terminalWidth(int descriptor)
{
    winsize size{}; // stays 0 when it cannot be read
    ioctl(descriptor, TIOCGWINSZ, &size);
    return size.ws_col > 1 ? size.ws_col : 80;
}

} // namespace

TerminalLine::TerminalLine(int descriptor)
    : m_descriptor(descriptor), m_isTerminal(isatty(descriptor) == 1)
{}

void TerminalLine::show(const std::string& text)
{
    if (!m_isTerminal)
        return;
    const std::lock_guard lock(m_mutex);
    // The last column stays free: a character there would move the cursor to the next line.
    const std::string cut = text.substr(0, terminalWidth(m_descriptor) - 1);
    if (m_isClosed || cut == m_text)
        return;
    m_text = cut;
    write("\r" + cut + "\x1b[K");
}

void TerminalLine::erase()
{
    const std::lock_guard lock(m_mutex);
    eraseLocked();
}

void TerminalLine::close()
{
    const std::unique_lock lock(m_mutex, std::chrono::milliseconds(100));
    if (!lock)
        return;
    m_isClosed = true;
    eraseLocked();
}

void TerminalLine::eraseLocked()
{
    if (m_text.empty())
        return;
    m_text.clear();
    write("\r\x1b[K");
}

/// Ignores errors: a lookup does not fail because its progress cannot be shown.
void TerminalLine::write(const std::string& bytes) const
{
    [[maybe_unused]] const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
}

} // namespace command
