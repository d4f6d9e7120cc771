#ifndef CZETRACELOG_H
#define CZETRACELOG_H

#include <ace/SString.h>

#include <cstdint>
#include <cstring>

#include "pdk/include/czeerrormanager.h"
#include "pdk/include/czeexport.h"
#include "pdk/include/czerefcount.h"
#include "pdk/include/czesmartptr.h"
#include "pdk/include/czetracelogobject.h"

// Only the stand-ins have sinks. Their header is not installed for a host's own framework.
#if __has_include("pdk/include/czetracesink.h")
#include "pdk/include/czetracesink.h"
#endif

/// The provider framework, as far as the library uses it, and what only its stand-ins have.
namespace koze_pdk_4_4 {

/// The host's trace log. The library only calls `trace`; what the texts, flags and the setting
/// mean is the framework's business.
///
/// Made with `new` and shared by handles, the last of which destroys it. One log serves one
/// thread. The fields are the same with every framework.
class CZE_EXPORT CZeTraceLog : public virtual CZeRefCount {
public:
    CZeTraceLog() = default;

#ifdef CZETRACESINK_H
    /// Sends the lines that follow to `sink`; the log shares it with the caller's handles. An
    /// empty handle, as after construction, drops every line.
    void setSink(const CZeTraceSinkHandle& sink)
    {
        m_object = sink.get();
    }
#endif

    /// Formats and stores one line, if the framework wants its level. `format` and its arguments
    /// are those of printf.
    ///
    /// That of the stand-ins formats nothing that the sink does not want. A line that cannot be
    /// formatted is dropped and counted by the sink. It leaves errno alone, is no cancellation
    /// point, and throws only what the sink throws.
    void trace(int level, const char* format, ...) __attribute__((format(printf, 3, 4)));

protected:
    ACE_String_Base<char> m_texts[5];        ///< The framework's.
    bool m_flags[3] = {false, false, false}; ///< The framework's.
    std::int32_t m_setting = 12345;          ///< The framework's.
    CZeTraceLogObjectHandle m_object{};      ///< With the stand-ins, the sink.
};

/// Handle to the host's trace log; an empty one silences all tracing.
using CZeTraceLogHandle = CZeSmartPtr<CZeTraceLog, CZeContextSingletonAllocator<CZeTraceLog>>;

/// Base of everything that traces: holds the handle, empty after construction.
///
/// Not safe between threads.
class CZE_EXPORT CZeTraceable {
public:
    CZeTraceable() = default;
    CZeTraceable(const CZeTraceable&) = default;
    CZeTraceable& operator=(const CZeTraceable&) = default;
    virtual ~CZeTraceable() = default;

// g++ warns here of a derived class whose operation of this name is another one on purpose.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
    /// Shares `log` from now on and releases the log held before; an empty handle makes the object
    /// silent. Writes no line.
    virtual void registerTraceLog(const CZeTraceLogHandle& log)
    {
        m_traceLog = log;
    }
#pragma GCC diagnostic pop

protected:
    /// Empty while the object is silent. Operations of derived classes trace to it.
    CZeTraceLogHandle m_traceLog{};
};

/// Brackets an operation with an entering and an exiting line, however the operation ends.
///
/// The lines go to the log that the handle held at construction, even when the operation itself
/// registers another one. Lives on the stack of one operation; see CZE_TRACE_FUNCTION.
class CZE_EXPORT CZeTraceLogFunction {
public:
    /// Writes the entering line, unless `log` is empty or `function` is null. Of `file` the part
    /// behind the last '/' is shown; a name without any '/' shows this header's path instead.
    /// Neither text is copied: both must outlive the tracer. What the log throws passes through.
    CZeTraceLogFunction(const CZeTraceLogHandle& log, const char* function, int line,
                        const char* file)
        : m_log(log), m_function(function), m_line(line), m_file(baseName(file))
    {
        if (m_log && m_function != nullptr)
            m_log->trace(level, "Entering Function %s [%d, %s]", m_function, m_line, m_file);
    }

    CZeTraceLogFunction(const CZeTraceLogFunction&) = delete;
    CZeTraceLogFunction& operator=(const CZeTraceLogFunction&) = delete;

    /// Writes the exiting line, without line and file when the line is 0. A log that throws here
    /// must not end the host: the line is lost instead.
    virtual ~CZeTraceLogFunction()
    {
        try {
            traceExit();
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }

private:
    static constexpr int level = 6;

    static const char* baseName(const char* file)
    {
        const char* slash = file == nullptr ? nullptr : std::strrchr(file, '/');
        return slash == nullptr ? "pdk/include/czetracelog.h" : slash + 1;
    }

    void traceExit()
    {
        if (!m_log || m_function == nullptr)
            return;
        if (m_line != 0)
            m_log->trace(level, "Exiting Function %s [%d, %s]", m_function, m_line, m_file);
        else
            m_log->trace(level, "Exiting Function %s", m_function);
    }

    CZeTraceLogHandle m_log;
    const char* m_function;
    std::int32_t m_line;
    const char* m_file;
};

} // namespace koze_pdk_4_4

/// Opens the tracer of the enclosing member of a CZeTraceable, with that member's own name, line
/// and file. The first statement of every traced operation.
#define CZE_TRACE_FUNCTION()                                                                       \
    const koze_pdk_4_4::CZeTraceLogFunction czeTraceFunction(m_traceLog, __func__, __LINE__,       \
                                                             __FILE__)

/// Writes a line from a member of a CZeTraceable. Without a log the arguments are not evaluated.
#define CZE_TRACE(level, ...)                                                                      \
    do {                                                                                           \
        if (m_traceLog)                                                                            \
            m_traceLog->trace(level, __VA_ARGS__);                                                 \
    } while (false)

#endif
