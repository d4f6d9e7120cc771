// The examination of made-up machines without the volume manager's tools.
#include "doctor/examination.h"

#include <gmock/gmock.h>

#include "tests/support/made_up_machine.h"

namespace {

using command::Code;
using command::Explanation;
using command::Finding;
using command::Report;
using command::StopReason;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ExaminationTest : public testing::Test {
protected:
    ExaminationTest()
    {
        m_machine.addDisk("sda", "8:0", "2:0:0:0");
        m_machine.addDisk("sdb", "8:16", "3:0:0:0");
        m_machine.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        m_order.roots = m_machine.roots();
        m_order.showProgress = [](const std::string&) {};
    }

    Report examine()
    {
        m_codes.clear();
        m_names.clear();
        return command::examine(m_order, command::makeModules({}), m_stop,
                                [this](const Finding& finding) { take(finding); });
    }

    void take(const Finding& finding)
    {
        m_codes.push_back(finding.code);
        if (finding.code == m_stopAt)
            m_stop->request();
    }

    MadeUpMachine m_machine;
    command::ExaminationOrder m_order;
    const std::shared_ptr<command::StopRequest> m_stop = std::make_shared<command::StopRequest>();
    std::optional<Code> m_stopAt;
    std::vector<Code> m_codes;
    std::vector<std::string> m_names;
};

TEST_F(ExaminationTest, ReadsEveryNameForAReport)
{
    m_order.takeName = [this](const Explanation& name) { m_names.push_back(name.device.name); };
    const Report report = examine();
    EXPECT_THAT(m_names, ElementsAre("/dev/dm-0", "/dev/mapper/mpatha", "/dev/sda", "/dev/sdb"));
    EXPECT_EQ(report.end, StopReason::none);
    EXPECT_EQ(report.maps.size(), 1U);
}

TEST_F(ExaminationTest, WithoutAReportNothingIsKeptForIt)
{
    const Report report = examine();
    EXPECT_EQ(report.disks.size(), 1U);
    EXPECT_THAT(report.maps, IsEmpty());
}

TEST_F(ExaminationTest, AnInterruptEndsTheReadingOfNames)
{
    m_order.takeName = [this](const Explanation& name) {
        m_names.push_back(name.device.name);
        m_stop->request();
    };
    const Report report = examine();
    EXPECT_EQ(m_names.size(), 1U);
    EXPECT_EQ(report.end, StopReason::interrupt);
    EXPECT_THAT(report.disks, IsEmpty());
    EXPECT_EQ(m_codes.back(), Code::interrupted);
    EXPECT_THAT(m_codes, Not(Contains(Code::driverDevices)));
}

TEST_F(ExaminationTest, AnInterruptEndsTheChecksOfTheMachine)
{
    m_stopAt = Code::noVolumeManager;
    EXPECT_EQ(examine().end, StopReason::interrupt);
    EXPECT_THAT(m_codes, ElementsAre(Code::noVolumeManager, Code::interrupted));
}

TEST_F(ExaminationTest, ATimeLimitEndsToolsAndNothingElse)
{
    m_stop->request(StopReason::timeLimit);
    const Report report = examine();
    EXPECT_EQ(report.end, StopReason::none);
    EXPECT_EQ(report.disks.size(), 1U);
    EXPECT_THAT(m_codes, Contains(Code::driverDevices));
}

} // namespace
