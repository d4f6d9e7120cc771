#ifndef TESTS_SUPPORT_RECORDING_LOG_H
#define TESTS_SUPPORT_RECORDING_LOG_H

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

#include "pdk/include/czetracelog.h"

/// A trace line as the tests compare it.
struct Line {
    int level;
    std::string text;

    bool operator==(const Line& other) const { return level == other.level && text == other.text; }
};

std::ostream& operator<<(std::ostream& stream, const Line& line);

/// A trace log that keeps its lines.
class RecordingLog {
public:
    RecordingLog();

    koze_pdk_4_4::CZeTraceLogHandle& handle() { return m_handle; }

    /// The lines since the last call, in order.
    std::vector<Line> takeLines();

private:
    std::vector<Line> m_lines;
    koze_pdk_4_4::CZeTraceLogHandle m_handle = new koze_pdk_4_4::CZeTraceLog;
};

/// Matches the entering line of `function` in `file`, whatever its line number.
testing::Matcher<const Line&> Entering(const std::string& function, const std::string& file);

/// Matches the exiting line of `function` in `file`, whatever its line number.
testing::Matcher<const Line&> Exiting(const std::string& function, const std::string& file);

#endif
