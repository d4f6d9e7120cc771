#include "output/output_stream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "text/wrapped.h"

namespace command {

namespace {

constexpr std::size_t bufferSize = 64 << 10;

/// Writes as much as the descriptor takes. Returns a negative number when it takes none.
ssize_t writeOnce(int descriptor, std::string_view bytes)
{
    for (;;) {
        const ssize_t size = ::write(descriptor, bytes.data(), bytes.size());
        if (size >= 0 || errno != EINTR)
            return size;
    }
}

/// Waits until the descriptor takes PIPE_BUF bytes. A negative `patience` has no end. Returns false
/// when it has passed.
bool awaitRoom(int descriptor, std::chrono::milliseconds patience)
{
    pollfd room{descriptor, POLLOUT, 0};
    return poll(&room, 1, static_cast<int>(patience.count())) != 0;
}

} // namespace

OutputStream::OutputStream(int descriptor)
    : m_descriptor(descriptor), m_isTerminal(isatty(descriptor) == 1)
{}

std::size_t OutputStream::width() const
{
    return lineWidth(m_descriptor);
}

std::size_t OutputStream::height() const
{
    constexpr std::size_t usualHeight = 24;
    winsize size{}; // stays 0 when it cannot be read
    ioctl(m_descriptor, TIOCGWINSZ, &size);
    return size.ws_row > 0 ? size.ws_row : usualHeight;
}

bool OutputStream::wait(std::chrono::milliseconds time) const
{
    pollfd reader{m_descriptor, 0, 0}; // poll reports POLLERR for any events
    return poll(&reader, 1, static_cast<int>(time.count())) <= 0;
}

void OutputStream::write(std::string_view bytes)
{
    const std::lock_guard lock(m_mutex);
    add(bytes);
}

void OutputStream::write(std::string_view bytes, std::string ending)
{
    const std::lock_guard lock(m_mutex);
    add(bytes);
    m_ending = std::move(ending);
}

void OutputStream::flush()
{
    const std::lock_guard lock(m_mutex);
    drain();
}

void OutputStream::end(std::chrono::milliseconds patience) noexcept
{
    const std::unique_lock lock(m_mutex, patience);
    if (!lock || std::exchange(m_hasEnded, true))
        return;
    std::string_view left = m_buffer += m_ending;
    while (!left.empty() && awaitRoom(m_descriptor, patience)) {
        const ssize_t size = writeOnce(m_descriptor, left.substr(0, PIPE_BUF));
        if (size <= 0)
            return;
        left.remove_prefix(static_cast<std::size_t>(size));
    }
}

void OutputStream::add(std::string_view bytes)
{
    m_buffer += bytes;
    if (m_isTerminal || m_buffer.size() >= bufferSize)
        drain();
}

/// Drops the buffer, because some of it may have been written.
void OutputStream::fail()
{
    const int error = errno;
    m_buffer.clear();
    throw std::system_error(error, std::generic_category(), "cannot write to standard output");
}

void OutputStream::drain()
{
    if (m_hasEnded)
        return;
    std::string_view left = m_buffer;
    while (!left.empty()) {
        const ssize_t size = writeOnce(m_descriptor, left);
        if (size >= 0)
            left.remove_prefix(static_cast<std::size_t>(size));
        else if (errno == EAGAIN)
            awaitRoom(m_descriptor, std::chrono::milliseconds(-1));
        else
            fail();
    }
    m_buffer.clear();
}

} // namespace command
