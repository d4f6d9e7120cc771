#include "tests/support/recording_log.h"

#include <utility>

namespace {

testing::Matcher<const Line&> atBrackets(const std::string& text, const std::string& file)
{
    return testing::AllOf(
        testing::Field(&Line::level, 6),
        testing::Field(&Line::text,
                       testing::MatchesRegex(text + " \\[[1-9][0-9]*, " + file + "\\]")));
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Line& line)
{
    return stream << line.level << " \"" << line.text << '"';
}

RecordingLog::RecordingLog()
{
    m_handle->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(
        koze_pdk_4_4::CZeTraceSink::everything, [this](int level, std::string_view text) {
            m_lines.push_back({level, std::string(text)});
        }));
}

std::vector<Line> RecordingLog::takeLines()
{
    return std::exchange(m_lines, {});
}

testing::Matcher<const Line&> Entering(const std::string& function, const std::string& file)
{
    return atBrackets("Entering Function " + function, file);
}

testing::Matcher<const Line&> Exiting(const std::string& function, const std::string& file)
{
    return atBrackets("Exiting Function " + function, file);
}
