#ifndef CZETRACESINK_H
#define CZETRACESINK_H

#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "pdk/include/czeexport.h"
#include "pdk/include/czesmartptr.h"
#include "pdk/include/czetracelogobject.h"

namespace koze_pdk_4_4 {

/// Where the lines of a trace log go, and up to which level.
///
/// A line is wanted when its level is not above the sink's: 1 the exception caught around a
/// command, 2 warnings and failed commands, 3 informational lines, 6 entering and exiting lines
/// and detailed progress. Not safe between threads, like the log that holds it.
class CZE_EXPORT CZeTraceSink : public CZeTraceLogObject {
public:
    /// The level that wants every line.
    static constexpr int everything = 6;

    /// `level` is the highest that is wanted; 0 wants nothing.
    explicit CZeTraceSink(int level) : m_level(level) {}

    /// Whether a line of that level is wanted.
    bool wants(int level) const { return level <= m_level; }

    /// Stores one line that is wanted, given without its line end. `text` is valid during the call
    /// only. What this throws reaches the operation that traces.
    virtual void write(int level, std::string_view text) = 0;

    /// Counts a line that could not be stored.
    void drop() { ++m_dropped; }

    /// The number of lines that were wanted and could not be stored.
    std::uint64_t dropped() const { return m_dropped; }

private:
    int m_level;
    std::uint64_t m_dropped = 0;
};

/// Handle to a sink, as logs and their callers share it.
using CZeTraceSinkHandle = CZeSmartPtr<CZeTraceSink, CZeNullAllocator<CZeTraceSink>>;

/// Writes lines to an open descriptor, each with a single `write`, so that the lines of several
/// processes do not mix:
///
///     2026-11-21T10:53:24.123+00:00 [4711] 6 Entering Function claim [24, dmp_claim_manager.cpp]
///
/// that is local time with its zone, process id, level, text. The text counts as UTF-8. Bytes that
/// are not, and control characters (see czeprintable.h), become a backslash, an x and two digits,
/// byte by byte: a device name can neither forge a line nor steer the reader's terminal. A line
/// that cannot be written at once and whole (disk full, descriptor closed, no reader, a full pipe
/// that does not block) is dropped and counted; no signal reaches the host. A line that was written
/// in part is ended before the next one is written.
class CZE_EXPORT CZeTraceDescriptorSink : public CZeTraceSink {
public:
    /// `descriptor` stays the caller's and must outlive the sink's last line.
    CZeTraceDescriptorSink(int level, int descriptor)
        : CZeTraceSink(level), m_descriptor(descriptor)
    {}
    void write(int level, std::string_view text) override;

protected:
    /// The descriptor that lines are written to.
    int descriptor() const { return m_descriptor; }

private:
    CZE_LOCAL void setSecond(std::time_t second);
    CZE_LOCAL void appendPrefix(std::string& line, int level);

    int m_descriptor;
    bool m_midLine = false;
    std::optional<std::time_t> m_second{}; // of the texts below
    std::string m_time{};                  // 2026-11-21T10:53:24
    std::string m_zone{};                  // +00:00
};

/// Writes lines to standard error.
class CZE_EXPORT CZeTraceStderrSink : public CZeTraceDescriptorSink {
public:
    /// `level` is the highest that is wanted.
    explicit CZeTraceStderrSink(int level) : CZeTraceDescriptorSink(level, 2) {}
};

/// Appends lines to a file.
class CZE_EXPORT CZeTraceFileSink : public CZeTraceDescriptorSink {
public:
    /// Opens `path` for appending and creates it when it is missing, with mode 0640 at most. Throws
    /// std::system_error with the path when that fails. The descriptor is close-on-exec and
    /// above 2.
    ///
    /// Another account cannot choose where the lines go. In a folder that others may write (one of
    /// an account that is neither the caller's nor root, or writable for its group or everybody),
    /// symbolic links, FIFOs and files of such accounts are refused, and files with several names;
    /// so is every such link on the way there. /dev/stderr, /dev/fd/N and FIFOs of the caller's own
    /// work. A FIFO that nobody reads is an error and not waited for; lines wait for its reader.
    CZeTraceFileSink(int level, const std::string& path);
    ~CZeTraceFileSink() override;
};

/// Hands lines to the host, unaltered. The callback may replace the log's sink and register another
/// log.
class CZE_EXPORT CZeTraceCallbackSink : public CZeTraceSink {
public:
    /// Gets a line that is wanted, without its line end. `text` is valid during the call only.
    using Callback = std::function<void(int level, std::string_view text)>;

    /// `callback` is copied or moved into the sink, and must not be empty.
    CZeTraceCallbackSink(int level, Callback callback)
        : CZeTraceSink(level), m_callback(std::move(callback))
    {}
    void write(int level, std::string_view text) override { m_callback(level, text); }

private:
    Callback m_callback;
};

} // namespace koze_pdk_4_4

#endif
