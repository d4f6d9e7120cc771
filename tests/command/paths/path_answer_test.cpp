#include "paths/path_answer.h"

#include <gmock/gmock.h>

using namespace command;

namespace {

Field fieldOf(std::string_view column, const PathAnswer& answer)
{
    for (const Column<PathAnswer>& candidate : pathColumns(true)) {
        if (candidate.heading.name == column)
            return candidate.value(answer);
    }
    ADD_FAILURE() << "there is no column " << column;
    return {};
}

class PathAnswers : public testing::Test {
protected:
    DiskPath m_path;
    const DiskPaths m_disk{PathDriver::none, "sda", nullptr, {}, {}};
    const DiskFacts m_facts{};
    PathAnswer m_answer{m_disk, m_facts, m_path};
};

TEST_F(PathAnswers, ColourAStateByWhatItMeansForTheDisk)
{
    for (const auto& [state, tone] :
         {std::pair(PathState::active, Tone::good), std::pair(PathState::standby, Tone::plain),
          std::pair(PathState::failed, Tone::bad), std::pair(PathState::offline, Tone::bad),
          std::pair(PathState::unknown, Tone::note)}) {
        m_path.state = state;
        const Mark mark = std::get<Mark>(fieldOf("STATE", m_answer));
        EXPECT_EQ(mark.text, pathStateName(state));
        EXPECT_EQ(mark.tone, tone) << mark.text;
    }
}

TEST_F(PathAnswers, HaveRatesOnlyOfASecondReading)
{
    const std::pair<const char*, std::int64_t> rates[] = {
        {"RPS", 1}, {"RBPS", 2}, {"WPS", 3}, {"WBPS", 4}};
    for (const auto& [column, rate] : rates)
        EXPECT_TRUE(std::holds_alternative<std::monostate>(fieldOf(column, m_answer))) << column;
    m_answer.rates = IoRates{1, 2, 3, 4};
    for (const auto& [column, rate] : rates)
        EXPECT_EQ(std::get<std::int64_t>(fieldOf(column, m_answer)), rate) << column;
}

} // namespace
