// The examination of given disks with scripted tools.
#include "doctor/examination.h"

#include "asked_disks.h"
#include "tests/support/made_up_machine.h"

namespace {

using command::Code;
using command::Finding;
using command::Report;
using command::StopReason;
using testing::Contains;

/// Examines sdc of a machine with ten native disks.
class ExaminationOfAGivenDisk : public testing::Test {
protected:
    ExaminationOfAGivenDisk()
    {
        int number = 0;
        for (const std::string& name : m_names)
            m_machine.addDisk(name, "8:" + std::to_string(16 * number++), "2:0:0:0");
        m_order.roots = m_machine.roots();
        m_order.paths = {"/dev/sdc"};
        m_order.options.timeout = std::chrono::seconds(5);
        m_order.showProgress = [](const std::string&) {};
    }

    static std::string question(const std::string& name)
    {
        return "/usr/sbin/kodmpadm   getdmpnode  nodename=" + name;
    }

    /// A tool that does not know the disk.
    void refuse(
        const std::string& name, const std::function<void()>& last = [] {})
    {
        m_tools.answer({question(name), 1, {"ERROR"}, last});
    }

    Report examine()
    {
        return command::examine(m_order, command::makeModules({}), m_stop,
                                [this](const Finding& finding) { m_findings.push_back(finding); });
    }

    std::vector<Code> codes() const
    {
        std::vector<Code> codes;
        for (const Finding& finding : m_findings)
            codes.push_back(finding.code);
        return codes;
    }

    std::string textOf(Code code) const
    {
        for (const Finding& finding : m_findings) {
            if (finding.code == code)
                return finding.text;
        }
        return "";
    }

    const std::vector<std::string> m_names{"sda", "sdb", "sdc", "sdd", "sde",
                                           "sdf", "sdg", "sdh", "sdi", "sdj"};
    MadeUpMachine m_machine;
    command::ExaminationOrder m_order;
    const std::shared_ptr<command::StopRequest> m_stop = std::make_shared<command::StopRequest>();
    std::vector<Finding> m_findings;
    ScriptedTools m_tools;
};

TEST_F(ExaminationOfAGivenDisk, AsksAboutEightOthersWhenTheToolsDoNotKnowIt)
{
    refuse("sdc");
    for (const char* other : {"sda", "sdb", "sdd", "sde", "sdf", "sdg", "sdh", "sdi"})
        refuse(other);
    examine();
    EXPECT_THAT(codes(), Contains(Code::toolFailed));
}

TEST_F(ExaminationOfAGivenDisk, AsksAboutNoOthersWhenTheToolItselfFailed)
{
    m_tools.answer(question("sdc"), 1009);
    examine();
    EXPECT_THAT(codes(), Contains(Code::toolFailed));
}

TEST_F(ExaminationOfAGivenDisk, AsksAboutNoOthersAfterARequestToStop)
{
    m_tools.answer({question("sdc"), 0, {}, [this] { m_stop->request(StopReason::timeLimit); }});
    EXPECT_EQ(examine().end, StopReason::timeLimit);
    EXPECT_EQ(textOf(Code::timeLimit),
              "the time limit of 5 s passed; 1 of 1 disk left unexamined: /dev/sdc");
}

TEST_F(ExaminationOfAGivenDisk, IsCompleteWhenTheTimeLimitPassesOverTheOthers)
{
    refuse("sdc");
    refuse("sda", [this] { m_stop->request(StopReason::timeLimit); });
    EXPECT_EQ(examine().end, StopReason::timeLimit);
    EXPECT_EQ(textOf(Code::timeLimit), "the time limit of 5 s passed; 0 of 1 disk left unexamined");
}

} // namespace
