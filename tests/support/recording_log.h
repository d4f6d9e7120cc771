#ifndef TESTS_SUPPORT_RECORDING_LOG_H
#define TESTS_SUPPORT_RECORDING_LOG_H

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "pdk/include/czetracelog.h"

/// A trace line as the tests compare it.
struct Line {
    int level;
    std::string text;

    bool operator==(const Line& other) const { return level == other.level && text == other.text; }
};

inline std::ostream& operator<<(std::ostream& stream, const Line& line)
{
    return stream << line.level << " \"" << line.text << '"';
}

/// A trace log that keeps its lines.
class RecordingLog {
public:
    RecordingLog()
    {
        m_handle->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(
            koze_pdk_4_4::CZeTraceSink::everything, [this](int level, std::string_view text) {
                m_lines.push_back({level, std::string(text)});
            }));
    }

    koze_pdk_4_4::CZeTraceLogHandle& handle() { return m_handle; }

    /// The lines since the last call, in order.
    std::vector<Line> takeLines() { return std::exchange(m_lines, {}); }

private:
    std::vector<Line> m_lines;
    koze_pdk_4_4::CZeTraceLogHandle m_handle = new koze_pdk_4_4::CZeTraceLog;
};

/// Matches the entering line of `function` in `file`, whatever its line number.
inline auto Entering(const std::string& function, const std::string& file)
{
    return testing::AllOf(
        testing::Field(&Line::level, 6),
        testing::Field(&Line::text, testing::MatchesRegex("Entering Function " + function +
                                                          " \\[[1-9][0-9]*, " + file + "\\]")));
}

/// Matches the exiting line of `function` in `file`, whatever its line number.
inline auto Exiting(const std::string& function, const std::string& file)
{
    return testing::AllOf(
        testing::Field(&Line::level, 6),
        testing::Field(&Line::text, testing::MatchesRegex("Exiting Function " + function +
                                                          " \\[[1-9][0-9]*, " + file + "\\]")));
}

#endif
