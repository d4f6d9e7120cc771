#include "pdk/include/czetracesink.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Keeps errno as the host left it.
class ErrnoKeeper {
public:
    ErrnoKeeper() = default;
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = m_errno; }

private:
    int m_errno = errno;
};

/// Holds SIGPIPE back on this thread, and takes away the one that a write may have raised.
class SigpipeBlock {
public:
    SigpipeBlock()
    {
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&m_sigpipe);
        sigaddset(&m_sigpipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_sigpipe, &m_mask);
    }
    SigpipeBlock(const SigpipeBlock&) = delete;
    SigpipeBlock& operator=(const SigpipeBlock&) = delete;
    ~SigpipeBlock()
    {
        const timespec noWait{};
        if (!m_wasPending)
            sigtimedwait(&m_sigpipe, nullptr, &noWait);
        pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);
    }

private:
    sigset_t m_sigpipe{};
    sigset_t m_mask{};
    bool m_wasPending;
};

ssize_t writeOnce(int descriptor, std::string_view bytes)
{
    for (;;) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0 || errno != EINTR)
            return written;
    }
}

/// `write`, without the signal when nobody reads the pipe or socket any more.
ssize_t writeQuietly(int descriptor, std::string_view bytes)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0)
        return -1;
    if (!S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode))
        return writeOnce(descriptor, bytes);
    const SigpipeBlock block;
    return writeOnce(descriptor, bytes);
}

/// Time stamp with milliseconds and zone, process id and level, as every line begins.
std::string linePrefix(int level)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const char sign = local.tm_gmtoff < 0 ? '-' : '+';
    const long offset = std::labs(local.tm_gmtoff) / 60;
    char text[96];
    const int length = std::snprintf(
        text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03ld%c%02ld:%02ld [%d] %d ",
        local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
        local.tm_sec, now.tv_nsec / 1000000, sign, offset / 60, offset % 60, getpid(), level);
    return {text, static_cast<std::size_t>(length)};
}

/// Appends `text` with its control characters as \xNN.
void appendEscaped(std::string& line, std::string_view text)
{
    static constexpr char digits[] = "0123456789abcdef";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7f)
            line += character;
        else
            (line += "\\x").append({digits[byte >> 4], digits[byte & 0xf]});
    }
}

int openForAppending(const std::string& path)
{
    const int opened =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666);
    if (opened < 0)
        throw std::system_error(errno, std::generic_category(), path);
    if (opened > 2)
        return opened;
    const int moved = fcntl(opened, F_DUPFD_CLOEXEC, 3);
    const int reason = errno;
    close(opened);
    if (moved < 0)
        throw std::system_error(reason, std::generic_category(), path);
    return moved;
}

} // namespace

namespace koze_pdk_4_4 {

void CZeTraceDescriptorSink::write(int level, std::string_view text)
{
    const ErrnoKeeper keeper;
    std::string line;
    try {
        if (m_midLine)
            line += '\n';
        line += linePrefix(level);
        appendEscaped(line, text);
        line += '\n';
    } catch (const std::bad_alloc&) {
        drop();
        return;
    }
    const ssize_t written = writeQuietly(m_descriptor, line);
    if (written == static_cast<ssize_t>(line.size())) {
        m_midLine = false;
        return;
    }
    drop();
    m_midLine = m_midLine ? written != 1 : written > 0;
}

CZeTraceFileSink::CZeTraceFileSink(int level, const std::string& path)
    : CZeTraceFileSink(level, openForAppending(path))
{}

CZeTraceFileSink::CZeTraceFileSink(int level, int descriptor)
    : CZeTraceDescriptorSink(level, descriptor), m_owned(descriptor)
{}

CZeTraceFileSink::~CZeTraceFileSink()
{
    close(m_owned);
}

} // namespace koze_pdk_4_4
