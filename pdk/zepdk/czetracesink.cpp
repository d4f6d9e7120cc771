#include "pdk/include/czetracesink.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <new>

#include <unistd.h>

#include "append_file.h"
#include "hoststate.h"
#include "printable_text.h"

namespace koze_pdk_4_4 {

namespace {

bool isPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

ssize_t writeOnce(int descriptor, std::string_view bytes)
{
    for (;;) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0 || errno != EINTR)
            return written;
    }
}

/// `write` without the signals that its failures raise: SIGPIPE when a pipe has no reader, SIGXFSZ
/// at the limit of a file's size. A signal that was pending before stays pending.
ssize_t writeQuietly(int descriptor, std::string_view bytes)
{
    sigset_t raised;
    sigset_t mask;
    sigemptyset(&raised);
    sigaddset(&raised, SIGPIPE);
    sigaddset(&raised, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &raised, &mask);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        if (sigismember(&mask, signal) == 1 && isPending(signal))
            sigdelset(&raised, signal);
    }
    const ssize_t written = writeOnce(descriptor, bytes);
    const timespec noWait{};
    if (written < 0)
        sigtimedwait(&raised, nullptr, &noWait);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    return written;
}

/// A number of a line's prefix, with the text before it.
struct Field {
    std::string_view before;
    long number;
    std::size_t width;
};

/// Appends the field, its number padded with zeros to its width.
void appendField(std::string& line, const Field& field)
{
    char digits[std::numeric_limits<long>::digits10 + 2];
    const char* end = std::to_chars(digits, std::end(digits), field.number).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    line += field.before;
    line.append(std::max(field.width, count) - count, '0').append(digits, count);
}

} // namespace

/// Formats the local time and its zone, unless the last line was of the same second: that takes
/// longer than the rest of a line.
void CZeTraceDescriptorSink::setSecond(std::time_t second)
{
    if (m_second == second)
        return;
    m_second.reset();
    tm local{};
    localtime_r(&second, &local);
    m_time.clear();
    for (const Field& field : {Field{"", local.tm_year + 1900, 4}, Field{"-", local.tm_mon + 1, 2},
                               Field{"-", local.tm_mday, 2}, Field{"T", local.tm_hour, 2},
                               Field{":", local.tm_min, 2}, Field{":", local.tm_sec, 2}})
        appendField(m_time, field);
    m_zone.clear();
    const long offset = std::labs(local.tm_gmtoff) / 60;
    appendField(m_zone, {local.tm_gmtoff < 0 ? "-" : "+", offset / 60, 2});
    appendField(m_zone, {":", offset % 60, 2});
    m_second = second;
}

/// Appends the time stamp with milliseconds and zone, the process id and the level, as every line
/// begins.
void CZeTraceDescriptorSink::appendPrefix(std::string& line, int level)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    setSecond(now.tv_sec);
    line += m_time;
    appendField(line, {".", now.tv_nsec / 1000000, 3});
    line += m_zone;
    appendField(line, {" [", getpid(), 1});
    appendField(line, {"] ", level, 1});
    line += ' ';
}

void CZeTraceDescriptorSink::write(int level, std::string_view text)
{
    std::string line;
    try {
        line.reserve(text.size() + 64);
        if (m_midLine)
            line += '\n';
        appendPrefix(line, level);
        appendPrintable(line, text);
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
    m_midLine = m_midLine || written > 0;
}

CZeTraceFileSink::CZeTraceFileSink(int level, const std::string& path)
    : CZeTraceDescriptorSink(level, openForAppending(path).release())
{}

CZeTraceFileSink::~CZeTraceFileSink()
{
    const HostState kept;
    close(descriptor());
}

} // namespace koze_pdk_4_4
