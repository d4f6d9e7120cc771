// Asking about several disks at once, and ending early.
#include "doctor/disk_inquiry.h"

#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

#include "kovm/command_lines.h"
#include "pdk/include/czeexecpipe.h"

namespace {

using command::askAboutDisks;
using command::DiskAnswer;
using command::InquiryOptions;
using command::StopRequest;
using koze_pdk_4_4::CZeExecPipeBase;
using Outcome = DiskAnswer::Outcome;
using testing::Each;
using testing::Field;

/// What the tools do in this program: they run in several threads at once.
class Tools {
public:
    int run(const std::string& command, std::vector<std::string>& output)
    {
        const int running = ++m_running;
        int most = m_mostAtOnce;
        while (most < running && !m_mostAtOnce.compare_exchange_weak(most, running))
            continue;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ++m_runs;
        --m_running;
        if (command == hanging)
            return CZeExecPipeBase::deadlinePassed;
        if (command == interrupting)
            stop->request(command::StopReason::interrupt);
        output = {"NAME", "====", "node ENABLED"};
        return 0;
    }

    int mostAtOnce() const { return m_mostAtOnce; }
    int runs() const { return m_runs; }

    std::string hanging;
    std::string interrupting;
    std::shared_ptr<StopRequest> stop = std::make_shared<StopRequest>();

private:
    std::atomic<int> m_running{0};
    std::atomic<int> m_mostAtOnce{0};
    std::atomic<int> m_runs{0};
};

Tools*& currentTools()
{
    static Tools* tools = nullptr;
    return tools;
}

class DiskInquiry : public testing::Test {
protected:
    DiskInquiry() { currentTools() = &tools; }
    ~DiskInquiry() override { currentTools() = nullptr; }

    std::vector<DiskAnswer> ask(unsigned int jobs, bool forReport = false) const
    {
        InquiryOptions options;
        options.jobs = jobs;
        options.forReport = forReport;
        return askAboutDisks(disks, options, tools.stop);
    }

    static std::string question(const std::string& disk) { return kovm::nodeQuery(disk); }

    Tools tools;
    std::vector<std::string> disks{"/dev/sda", "/dev/sdb", "/dev/sdc", "/dev/sdd",
                                   "/dev/sde", "/dev/sdf", "/dev/sdg", "/dev/sdh"};
};

} // namespace

namespace koze_pdk_4_4 {

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}
CZeExecPipePosix::~CZeExecPipePosix() = default;

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& output,
                          const std::string& /*directory*/, unsigned long /*timeLimitSeconds*/,
                          const std::string& /*user*/, const std::string& /*environment*/,
                          const std::string& /*input*/)
{
    return currentTools()->run(command, output);
}

} // namespace koze_pdk_4_4

namespace {

TEST_F(DiskInquiry, AnswersComeInTheOrderOfTheDisks)
{
    for (const unsigned int jobs : {1U, 3U, 64U}) {
        const std::vector<DiskAnswer> answers = ask(jobs);
        ASSERT_EQ(answers.size(), disks.size());
        for (std::size_t i = 0; i < disks.size(); ++i)
            EXPECT_EQ(answers[i].path, disks[i]);
        EXPECT_THAT(answers, Each(Field(&DiskAnswer::outcome, Outcome::answered)));
    }
    EXPECT_EQ(tools.runs(), 3 * 2 * 8);
}

TEST_F(DiskInquiry, AsManyDisksAreAskedAboutAtOnceAsThereAreJobs)
{
    ask(1);
    EXPECT_EQ(tools.mostAtOnce(), 1);
    ask(4);
    EXPECT_GT(tools.mostAtOnce(), 1);
    EXPECT_LE(tools.mostAtOnce(), 4);
}

TEST_F(DiskInquiry, NoDiskIsAskedAboutAfterAToolThatHangs)
{
    tools.hanging = question("sdc");
    const std::vector<DiskAnswer> answers = ask(1);
    EXPECT_EQ(answers[1].outcome, Outcome::answered);
    EXPECT_EQ(answers[2].outcome, Outcome::hangs);
    for (std::size_t i = 3; i < disks.size(); ++i)
        EXPECT_EQ(answers[i].outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 5);
}

TEST_F(DiskInquiry, ARequestToStopLeavesTheAnswersSoFar)
{
    tools.interrupting = question("sdb");
    const std::vector<DiskAnswer> answers = ask(1);
    EXPECT_EQ(answers[0].outcome, Outcome::answered);
    for (std::size_t i = 1; i < disks.size(); ++i)
        EXPECT_EQ(answers[i].outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 3);
    EXPECT_EQ(ask(1).front().outcome, Outcome::notAsked);
    EXPECT_EQ(tools.runs(), 3);
}

TEST_F(DiskInquiry, OutputsAreKeptForReportsOnly)
{
    EXPECT_TRUE(ask(2).front().asked.front().output.empty());
    EXPECT_EQ(ask(2, true).front().asked.front().output.size(), 3U);
}

TEST_F(DiskInquiry, NoDisksAreNoWork)
{
    disks.clear();
    EXPECT_TRUE(ask(4).empty());
    EXPECT_EQ(tools.runs(), 0);
}

} // namespace
