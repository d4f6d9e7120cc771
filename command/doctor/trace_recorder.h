#ifndef DOCTOR_TRACE_RECORDER_H
#define DOCTOR_TRACE_RECORDER_H

#include <string_view>
#include <utility>

#include "output/document.h"
#include "pdk/include/czetracelog.h"
#include "pdk/include/czetracesink.h"

namespace command {

/// Keeps trace lines, and passes them on to the user's sink.
class TraceRecorder {
public:
    /// `userSink` is empty when the user wants no lines.
    explicit TraceRecorder(koze_pdk_4_4::CZeTraceSinkHandle userSink) : m_userSink(userSink) {}

    /// A log for lines to this recorder, which must outlive it.
    koze_pdk_4_4::CZeTraceLogHandle openLog();

    /// level and text of each line since the last call, in order.
    Document::List takeLines() { return std::exchange(m_lines, {}); }

private:
    void take(int level, std::string_view text);

    koze_pdk_4_4::CZeTraceSinkHandle m_userSink;
    Document::List m_lines;
};

} // namespace command

#endif
