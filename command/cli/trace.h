#ifndef CLI_TRACE_H
#define CLI_TRACE_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "pdk/include/czetracelog.h"

namespace command {

/// Counts the trace lines that a file did not take. When the last owner is gone, says on standard
/// error how many they are. Safe between threads.
class LostLines {
public:
    LostLines() = default;
    LostLines(const LostLines&) = delete;
    LostLines& operator=(const LostLines&) = delete;
    ~LostLines();

    void add(std::uint64_t lines) { m_lines += lines; }

private:
    std::atomic<std::uint64_t> m_lines{0};
};

/// Which trace lines the user wants, and where.
struct TraceOptions {
    std::optional<int> level; // without it: all lines, if there is a file
    std::optional<std::string> file;
    std::shared_ptr<LostLines> lost = std::make_shared<LostLines>(); // of the file
};

/// The sink for the lines that the user asked for: the file or standard error. An empty handle when
/// the user asked for none. Throws UsageError when the file cannot be written.
koze_pdk_4_4::CZeTraceSinkHandle openTraceSink(const TraceOptions& options);

/// A trace log with that sink; an empty handle when there is none. Throws as openTraceSink does.
koze_pdk_4_4::CZeTraceLogHandle openTraceLog(const TraceOptions& options);

} // namespace command

#endif
