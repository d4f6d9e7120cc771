#include "doctor/trace_recorder.h"

using namespace koze_pdk_4_4;

namespace command {

CZeTraceLogHandle TraceRecorder::openLog()
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(
        CZeTraceSink::everything, [this](int level, std::string_view text) { take(level, text); }));
    return log;
}

void TraceRecorder::take(int level, std::string_view text)
{
    m_lines.push_back(Document::Record{{"level", level}, {"text", std::string(text)}});
    if (m_userSink && m_userSink->wants(level))
        m_userSink->write(level, text);
}

} // namespace command
